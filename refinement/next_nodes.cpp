#include "refinement/next_nodes.h"

#include "state_space/memory.h"

#include <algorithm>
#include <utility>

namespace Calder::Refinement {

NodeNumber NextNodes::find_in_slots(NodeNumber node, unsigned event) const noexcept {
    Slot const& slot = m_slots[slot_of(key_of(node, event))];
    return slot.key == no_key ? not_known : slot.next;
}

void NextNodes::insert(NodeNumber node, unsigned event, NodeNumber next) {
    if (put_into_row(node, event, next)) {
        return;
    }
    if ((m_taken + 1) * 2 > m_slots.size()) {
        std::vector<Slot> const old =
            std::exchange(m_slots, std::vector<Slot>(m_slots.size() * 2, Slot{no_key, 0}));
        for (Slot const& slot : old) {
            if (slot.key != no_key) {
                m_slots[slot_of(slot.key)] = slot;
            }
        }
    }
    m_slots[slot_of(key_of(node, event))] = {key_of(node, event), next};
    ++m_taken;
}

/// False when there is no room in the rows.
bool NextNodes::put_into_row(NodeNumber node, unsigned event, NodeNumber next) {
    std::size_t const length = node < m_rows.size() ? m_rows[node].size() : 0;
    if (event >= length) {
        std::size_t const longer = std::size_t{event} + 1 - length;
        if (node >= most_in_rows || m_in_rows + longer > most_in_rows) {
            return false;
        }
        m_rows.resize(std::max<std::size_t>(m_rows.size(), std::size_t{node} + 1));
        m_rows[node].resize(std::size_t{event} + 1, not_known);
        m_in_rows += longer;
    }
    m_rows[node][event] = next;
    return true;
}

std::uint64_t NextNodes::growth_bytes(std::uint64_t additions) const noexcept {
    return (m_taken + additions) * 2 > m_slots.size() ? StateSpace::allocated_bytes(m_slots) * 2
                                                      : 0;
}

std::size_t NextNodes::slot_of(std::uint64_t key) const noexcept {
    std::size_t place = StateSpace::mix(key) & (m_slots.size() - 1);
    while (m_slots[place].key != no_key && m_slots[place].key != key) {
        place = (place + 1) & (m_slots.size() - 1);
    }
    return place;
}

} // namespace Calder::Refinement
