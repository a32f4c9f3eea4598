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
class CALDER_CSP_EXPORT ExceptionOperator : public EventSetOperator<ExceptionOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 1,
        .hash_seed = 0x3d7,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::second,
        .run_at_start = Arguments::first,
        .discarded = Arguments::none,
        .turned_on_by = TurnedOnBy::visible_event,
        .level = Level::as_wished,
        .commutative = false,
        .precedence = 8,
        .associativity = non_associative,
        .symbol = "[|",
        .symbol_end = "|>",
        .description = "Exception with event set:",
    };

    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    explicit ExceptionOperator(BitSet const& exception_events);
    ExceptionOperator(Session& session, EventSet const& exception_events);
    /// @}
    ~ExceptionOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                      HighLevelVisitor const& visitor,
                                      ProcessArray const& arguments) const override;
    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;
};

} // namespace Calder::ProcessCompiler::CSP
