#pragma once

#include "refinement/numbered_states.h"

namespace Calder::Refinement {

/// Which states can go on silently for ever. Each silent transition is looked at once, in all that
/// is asked together: strongly connected sets of the states that were not asked about before.
class Divergence {
  public:
    Divergence(NumberedStates& states, SearchMonitor& monitor)
        : m_states(states), m_monitor(monitor) {}

    /// Whether some of these states diverge. They must be all that their silent transitions lead to,
    /// ascending.
    [[nodiscard]] bool is_in(std::span<StateNumber const> closed);

  private:
    enum class Mark : std::uint8_t { unknown, diverges, does_not };

    void decide(std::vector<StateNumber> const& unknown);
    bool diverges(std::span<std::uint32_t const> cycle, std::vector<StateNumber> const& unknown);

    NumberedStates& m_states;
    SearchMonitor& m_monitor;
    std::vector<Mark> m_marks; // by state
};

} // namespace Calder::Refinement
