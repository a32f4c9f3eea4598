#pragma once

#include "csp/relabelling_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Projection: P runs, and only its events of A stay visible. Tick always stays tick.
///
///     P --e--> P'                       P --e--> P'
///     --------------------------        ----------------------------
///     P |\ A  --e-->  P' |\ A           P |\ A  --tau-->  P' |\ A
///     e in A or tick                    otherwise
///
/// Tau stays tau whatever the set, and projection stays after a tick.
class CALDER_CSP_EXPORT ProjectOperator : public RelabellingOperator<ProjectOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 8,
        .hash_seed = 0x189b,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = false,
        .precedence = 10,
        .associativity = left_associative,
        .symbol = "|\\",
        .description = "Projecting event set:",
    };

    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    explicit ProjectOperator(BitSet const& projected_events);
    ProjectOperator(Session& session, EventSet const& projected_events);
    /// @}
    ~ProjectOperator() override;

    /// The event of the whole when the argument performs `event`.
    unsigned event_outside(unsigned event) const;
};

} // namespace Calder::ProcessCompiler::CSP
