#pragma once

#include "refinement/node_number.h"
#include "state_space/mix.h"

#include <optional>
#include <vector>

namespace Calder::Refinement {

/// Where each event leads from each node, as far as it is known: an open-addressing table with
/// linear probing, 16 bytes a slot, at most half of them taken. It stands between an observer, which
/// may have to think, and a search, which asks for every step.
class NextNodes {
  public:
    [[nodiscard]] std::optional<NodeNumber> find(NodeNumber node, unsigned event) const noexcept {
        std::uint64_t const key = key_of(node, event);
        for (std::size_t slot = first_slot(key);; slot = (slot + 1) & (m_slots.size() - 1)) {
            if (m_slots[slot].key == key) {
                return m_slots[slot].next;
            }
            if (m_slots[slot].key == no_key) {
                return std::nullopt;
            }
        }
    }

    /// What is not there yet.
    void insert(NodeNumber node, unsigned event, NodeNumber next);

    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    struct Slot {
        std::uint64_t key;
        NodeNumber next;
    };

    static constexpr std::uint64_t no_key = ~std::uint64_t{0};
    static constexpr std::size_t first_slots = 256;

    static std::uint64_t key_of(NodeNumber node, unsigned event) noexcept {
        return std::uint64_t{node} << 32 | event;
    }
    [[nodiscard]] std::size_t first_slot(std::uint64_t key) const noexcept {
        return StateSpace::mix(key) & (m_slots.size() - 1);
    }
    void put(Slot const& slot) noexcept;

    std::vector<Slot> m_slots = std::vector<Slot>(first_slots, Slot{no_key, 0});
    std::size_t m_taken = 0;
};

} // namespace Calder::Refinement
