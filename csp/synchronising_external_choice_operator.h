#pragma once

#include "csp/event_set_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Synchronising external choice over a set A, of any number of arguments: the events of A are
/// performed by all together and leave the choice open; another visible event decides it, a silent
/// step leaves it open, and a termination ends the whole.
///
///     P1 --e--> P1'   ..   Pn --e--> Pn'
///     -------------------------------------------------------- e in A; for tick, to STOP
///     P1 [+A+] .. [+A+] Pn  --e-->  P1' [+A+] .. [+A+] Pn'
///
///     Pi --tau--> Pi'
///     ----------------------------------------------------------- tau not in A
///     .. [+A+] Pi [+A+] ..  --tau-->  .. [+A+] Pi' [+A+] ..
///
///     Pi --e--> Pi'                             Pi --tick--> Pi'
///     ------------------------------------      ----------------------------------------
///     .. [+A+] Pi [+A+] ..  --e-->  Pi'         .. [+A+] Pi [+A+] ..  --tick-->  STOP
///     e not in A, not tau, not tick             tick not in A
///
/// Of formats, tick is an event like any other.
class CALDER_CSP_EXPORT SynchronisingExternalChoiceOperator : public EventSetOperator {
  public:
    explicit SynchronisingExternalChoiceOperator(BitSet const& synchronised_events);
    ~SynchronisingExternalChoiceOperator() override;

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
