#pragma once

#include "csp/event_set_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Exception: P until it performs an event of A, then Q for good.
///
///     P --e--> P'                          P --e--> P'
///     -------------------------            ---------------------------------
///     P [|A|> Q  --e-->  Q                 P [|A|> Q  --e-->  P' [|A|> Q
///     e in A, not tick                     e not in A, not tick
///
///     P --tick--> P'
///     -----------------------------
///     P [|A|> Q  --tick-->  STOP
///
/// Of formats and high-level transitions, tick is an event like any other.
class CALDER_CSP_EXPORT ExceptionOperator : public EventSetOperator {
  public:
    explicit ExceptionOperator(BitSet const& exception_events);
    ExceptionOperator(Session& session, EventSet const& exception_events);
    ~ExceptionOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                      HighLevelVisitor const& visitor,
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
