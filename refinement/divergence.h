#pragma once

#include "refinement/numbered_states.h"

namespace Calder::Refinement {

/// Where one can go on silently for ever: among finitely many states, where these lead to a loop. Each
/// silent transition is looked at once, in all that is asked together (Tarjan, 1972).
class Divergence {
  public:
    Divergence(NumberedStates& states, SearchMonitor& monitor)
        : m_states(states), m_monitor(monitor) {}

    /// Whether some of these states diverge. They must be all that their silent transitions lead to,
    /// ascending.
    [[nodiscard]] bool is_in(std::span<StateNumber const> closed);

  private:
    enum class Mark : std::uint8_t { unknown, on_loop, on_none };

    void decide(std::vector<StateNumber> const& unknown);

    NumberedStates& m_states;
    SearchMonitor& m_monitor;
    std::vector<Mark> m_marks; // by state
};

} // namespace Calder::Refinement
