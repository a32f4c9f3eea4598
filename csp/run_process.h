#pragma once

#include "csp/event_set_process.h"

namespace Calder::ProcessCompiler::CSP {

/// RUN(A): performs any event of A for ever.
///
///     ------------------------- e in A
///     RUN(A)  --e-->  RUN(A)
class CALDER_CSP_EXPORT RunProcess : public EventSetProcess<RunProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 18,
        .hash_seed = 0x1a4d,
        .recursion_type = RecursionType::starts_none,
        .allow_recursion = never_asked,
        .run_at_start = never_asked,
        .discarded = never_asked,
        .turned_on_by = never_asked,
        .level = Level::low,
        .commutative = false,
        .precedence = 0,
        .associativity = non_associative,
        .symbol = "RUN",
        .description = "Run over event set:",
    };

    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    RunProcess(Session& session, EventSet const& events);
    explicit RunProcess(BitSet const& events);
    /// @}
    ~RunProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;
};

} // namespace Calder::ProcessCompiler::CSP
