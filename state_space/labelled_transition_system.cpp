#include "state_space/labelled_transition_system.h"

#include "state_space/memory.h"

namespace Calder::StateSpace {

std::uint64_t LabelledTransitionSystem::memory_bytes() const noexcept {
    return allocated_bytes(m_transitions) + allocated_bytes(m_row_ends);
}

} // namespace Calder::StateSpace
