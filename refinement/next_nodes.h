#pragma once

#include "refinement/node_number.h"
#include "state_space/mix.h"

#include <span>
#include <vector>

namespace Calder::Refinement {

/// Where each event leads from each node, as far as it is known. It stands between an observer, which
/// may have to think, and a search, which asks for every step.
///
/// Nodes of low numbers have rows by event, up to 4 MiB of them. What they have no room for stands in an
/// open-addressing table with linear probing: 16 bytes a slot, at most half of them taken.
class NextNodes {
  public:
    /// `not_known` before it is inserted.
    [[nodiscard]] NodeNumber find(NodeNumber node, unsigned event) const noexcept {
        NodeNumber const next = in_row(row(node), event);
        return next != not_known || m_taken == 0 ? next : find_in_slots(node, event);
    }

    /// Some of what is known of the node, by event. Good until something is inserted.
    [[nodiscard]] std::span<NodeNumber const> row(NodeNumber node) const noexcept {
        return node < m_rows.size() ? std::span(m_rows[node]) : std::span<NodeNumber const>();
    }
    [[nodiscard]] static NodeNumber in_row(std::span<NodeNumber const> row,
                                           unsigned event) noexcept {
        return event < row.size() ? row[event] : not_known;
    }

    /// What is not there yet.
    void insert(NodeNumber node, unsigned event, NodeNumber next);

    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

    /// Events up to the highest one, summed over the nodes that have rows.
    static constexpr std::size_t most_in_rows = std::size_t{1} << 20;

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
    [[nodiscard]] NodeNumber find_in_slots(NodeNumber node, unsigned event) const noexcept;
    [[nodiscard]] bool put_into_row(NodeNumber node, unsigned event, NodeNumber next);
    /// Where the key stands, or the free slot where it belongs.
    [[nodiscard]] std::size_t slot_of(std::uint64_t key) const noexcept;

    std::vector<std::vector<NodeNumber>> m_rows; // by node, then by event
    std::size_t m_in_rows = 0;
    std::vector<Slot> m_slots = std::vector<Slot>(first_slots, Slot{no_key, 0});
    std::size_t m_taken = 0;
};

} // namespace Calder::Refinement
