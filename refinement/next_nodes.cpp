#include "refinement/next_nodes.h"

#include "state_space/memory.h"

#include <utility>

namespace Calder::Refinement {

void NextNodes::insert(NodeNumber node, unsigned event, NodeNumber next) {
    if ((m_taken + 1) * 2 > m_slots.size()) {
        std::vector<Slot> const old =
            std::exchange(m_slots, std::vector<Slot>(m_slots.size() * 2, Slot{no_key, 0}));
        for (Slot const& slot : old) {
            if (slot.key != no_key) {
                put(slot);
            }
        }
    }
    put({key_of(node, event), next});
    ++m_taken;
}

std::uint64_t NextNodes::growth_bytes(std::uint64_t additions) const noexcept {
    return (m_taken + additions) * 2 > m_slots.size() ? StateSpace::allocated_bytes(m_slots) * 2
                                                      : 0;
}

void NextNodes::put(Slot const& slot) noexcept {
    std::size_t place = first_slot(slot.key);
    while (m_slots[place].key != no_key) {
        place = (place + 1) & (m_slots.size() - 1);
    }
    m_slots[place] = slot;
}

} // namespace Calder::Refinement
