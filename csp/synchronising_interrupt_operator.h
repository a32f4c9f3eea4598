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
/// Of formats, a tick of Q is an event like any other: Q takes over by it. What the visitor answers
/// while Q is asked does not keep the joint transitions from being
/// offered.
class CALDER_CSP_EXPORT SynchronisingInterruptOperator
    : public EventSetOperator<SynchronisingInterruptOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 7,
        .hash_seed = 0x152b,
        .recursion_type = RecursionType::ends_others,
        .allow_recursion = Arguments::second,
        .run_at_start = Arguments::every,
        .discarded = Arguments::all_but_first,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = false,
        .precedence = 5,
        .associativity = left_associative,
        .symbol = "/+",
        .symbol_end = "+\\",
        .description = "Synchronising Interrupt synchronising on:",
        .same_operator = SameOperator::with_equal_parameters,
    };

    /// By event number; tick may be among them.
    explicit SynchronisingInterruptOperator(BitSet const& synchronised_events);
    ~SynchronisingInterruptOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
