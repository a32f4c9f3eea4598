#include "state_space/labelled_transition_system.h"

namespace Calder::StateSpace {

std::uint64_t LabelledTransitionSystem::memory_bytes() const noexcept {
    return m_transitions.memory_bytes() + m_row_ends.memory_bytes();
}

} // namespace Calder::StateSpace
