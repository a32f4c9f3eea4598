#pragma once

#include "csp/event_set_process.h"

namespace Calder::ProcessCompiler::CSP {

/// CHAOS(A): may at any time refuse everything, or offer any event of A and go on.
///
///     -------------------------     --------------------------------------------------
///     CHAOS(A)  --tau-->  STOP      CHAOS(A)  --tau-->  [] e in A: (e -> CHAOS(A))
class CALDER_CSP_EXPORT ChaosProcess : public EventSetProcess<ChaosProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 17,
        .hash_seed = 0x183b,
        .recursion_type = RecursionType::starts_none,
        .allow_recursion = never_asked,
        .run_at_start = never_asked,
        .discarded = never_asked,
        .turned_on_by = never_asked,
        .level = Level::low,
        .commutative = never_asked, // a panic says so in words
        .precedence = 0,
        .associativity = non_associative,
        .symbol = "CHAOS",
        .description = "Chaos over event set:",
    };

    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    ChaosProcess(Session& session, EventSet const& events);
    explicit ChaosProcess(BitSet const& events);
    /// @}
    ~ChaosProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    /// Panics with "Unary operator cannot be commutative".
    bool is_commutative() const override;
};

} // namespace Calder::ProcessCompiler::CSP
