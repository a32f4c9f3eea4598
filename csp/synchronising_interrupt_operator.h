#pragma once

#include "csp/event_set_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Synchronising interrupt over a set A: P runs and Q may take over by a visible event outside A;
/// the events of A are performed by both together and leave the interrupt in place. A termination
/// of either ends the whole.
///
///     P --e--> P'     Q --e--> Q'
///     ---------------------------------- e in A; for tick, to STOP
///     P /+A+\ Q  --e-->  P' /+A+\ Q'
///
///     P --e--> P'                              P --tick--> P'
///     ---------------------------------        ----------------------------
///     P /+A+\ Q  --e-->  P' /+A+\ Q            P /+A+\ Q  --tick-->  STOP
///     e not in A, not tick                     tick not in A
///
///     Q --tau--> Q'                            Q --e--> Q'
///     -----------------------------------      -------------------------
///     P /+A+\ Q  --tau-->  P /+A+\ Q'          P /+A+\ Q  --e-->  Q'
///     tau not in A                             e not in A, not tau, not tick
///
///     Q --tick--> Q'
///     ---------------------------- tick not in A
///     P /+A+\ Q  --tick-->  STOP
///
/// What the visitor answers while Q is asked does not keep the joint transitions from being
/// offered.
class CALDER_CSP_EXPORT SynchronisingInterruptOperator : public EventSetOperator {
  public:
    explicit SynchronisingInterruptOperator(BitSet const& synchronised_events);
    ~SynchronisingInterruptOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    std::uint64_t hash_code() const override;

    unsigned operator_kind() const override;
    RecursionType recursion_type() const override;
    bool allows_recursion(unsigned index) const override;
    ArgumentState process_state(unsigned index) const override;
    bool discarded_by(unsigned index) const override;
    TurnedOnBy turned_on_by(unsigned index) const override;
    CompilationLevel preferred_compilation_level(bool high_wished) const override;
    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Operator const& other) const override;
};

} // namespace Calder::ProcessCompiler::CSP
