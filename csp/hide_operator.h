#pragma once

#include "csp/relabelling_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Hiding: P runs, and its events of A are performed silently.
///
///     P --e--> P'                       P --e--> P'
///     ---------------------------       -------------------------
///     P \ A  --tau-->  P' \ A           P \ A  --e-->  P' \ A
///     e in A                            e not in A
///
/// Tick is an event like any other, and hiding stays after it.
class CALDER_CSP_EXPORT HideOperator : public RelabellingOperator<HideOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 4,
        .hash_seed = 0x62b,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = false,
        .precedence = 10,
        .associativity = left_associative,
        .symbol = "\\",
        .description = "Hiding event set:",
    };

    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    explicit HideOperator(BitSet const& hidden_events);
    HideOperator(Session& session, EventSet const& hidden_events);
    /// @}
    ~HideOperator() override;

    /// The event of the whole when the argument performs `event`.
    unsigned event_outside(unsigned event) const;
};

} // namespace Calder::ProcessCompiler::CSP
