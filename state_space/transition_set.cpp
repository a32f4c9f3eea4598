#include "state_space/transition_set.h"

#include "state_space/memory.h"
#include "state_space/mix.h"

#include <algorithm>
#include <utility>

namespace Calder::StateSpace {

namespace {

constexpr std::size_t first_slots = 64;

} // namespace

bool TransitionSet::insert(Transition transition) {
    if ((m_size + 1) * 2 > m_slots.size()) {
        grow();
    }
    Slot& slot = slot_for(transition);
    if (slot.stamp == m_stamp) {
        return false;
    }
    slot = Slot{transition, m_stamp};
    ++m_size;
    return true;
}

void TransitionSet::clear() noexcept {
    m_size = 0;
    if (++m_stamp == 0) { // after 2^32 fillings old stamps would look present
        std::fill(m_slots.begin(), m_slots.end(), Slot{});
        m_stamp = 1;
    }
}

std::uint64_t TransitionSet::memory_bytes() const noexcept {
    return allocated_bytes(m_slots);
}

std::uint64_t TransitionSet::growth_bytes(std::uint64_t additions) const noexcept {
    return (m_size + additions) * 2 > m_slots.size() ? memory_bytes() * 2 : 0;
}

/// The slot that holds the transition, or the free one that it belongs into.
TransitionSet::Slot& TransitionSet::slot_for(Transition transition) noexcept {
    std::size_t const mask = m_slots.size() - 1;
    std::size_t slot = mix(std::uint64_t{transition.event} << 32 | transition.target) & mask;
    while (m_slots[slot].stamp == m_stamp && m_slots[slot].transition != transition) {
        slot = (slot + 1) & mask;
    }
    return m_slots[slot];
}

void TransitionSet::grow() {
    std::vector<Slot> const old =
        std::exchange(m_slots, std::vector<Slot>(std::max(first_slots, m_slots.size() * 2)));
    for (Slot const& slot : old) {
        if (slot.stamp == m_stamp) {
            slot_for(slot.transition) = slot;
        }
    }
}

} // namespace Calder::StateSpace
