#pragma once

#include "refinement/node_number.h"
#include "state_space/machine/run/visited_states.h"

namespace Calder::Refinement {

using StateSpace::StateNumber;
using StateSpace::Word;

/// The pairs that a search has reached: a state of the concrete side, as words, with a node.
/// Numbered in the order in which they were added.
///
/// While they fit there, the nodes stand in bits of the last word that the states leave free; a pair
/// then takes what the state alone would take. When a node does not fit any more, each pair gets one
/// word more, its first, for the node. Beside each pair stands the one from which it was reached
/// first: 4 bytes, up to 8 after an array has grown.
class VisitedPairs {
  public:
    /// For states of `state_width` words, the last of which leaves its `spare_bits` upper bits free.
    VisitedPairs(std::uint32_t state_width, unsigned spare_bits);

    [[nodiscard]] StateNumber size() const noexcept { return m_pairs.size(); }
    /// The words of a state, and those of a pair.
    [[nodiscard]] std::uint32_t state_width() const noexcept { return m_state_width; }
    [[nodiscard]] std::uint32_t width() const noexcept { return m_pairs.width(); }

    [[nodiscard]] NodeNumber node(StateNumber pair) const noexcept;
    /// `state_width` words.
    void read_state(StateNumber pair, Word* state) const noexcept;
    /// Writes a pair's words.
    void write(Word const* state, NodeNumber node, Word* pair) const noexcept {
        if (m_has_node_word) {
            *pair++ = node;
        }
        StateSpace::copy_words(state, pair, m_state_width);
        pair[m_state_width - 1] |= node * m_node_unit;
    }

    /// Whether states are as wide and nodes up to this one fit. Otherwise `make_fit` comes before
    /// they are written; it writes all pairs anew and holds them twice meanwhile.
    [[nodiscard]] bool fits(std::uint32_t state_width, NodeNumber most_node) const noexcept {
        return state_width == m_state_width && most_node <= m_most_node;
    }
    void make_fit(std::uint32_t state_width, NodeNumber most_node);

    [[nodiscard]] std::uint64_t hash(Word const* pair) const noexcept {
        return StateSpace::VisitedStates::hash(pair, width());
    }
    void prefetch_bucket(std::uint64_t hash) const noexcept { m_pairs.prefetch_bucket(hash); }
    /// Also tells which pair it will be, most likely; no_state where none is likely.
    StateNumber prefetch_state(std::uint64_t hash) const noexcept {
        return m_pairs.prefetch_state(hash);
    }
    [[nodiscard]] bool is_pair(StateNumber pair, Word const* other) const noexcept {
        return m_pairs.is_state(pair, other);
    }

    void make_room(std::uint64_t count) { m_pairs.make_room(count); }
    /// As VisitedStates does, for a pair that is reached from `parent`.
    StateNumber find_or_add(Word const* pair, std::uint64_t hash, StateNumber parent,
                            StateNumber max_pairs) {
        StateNumber const number = m_pairs.find_or_add(pair, hash, max_pairs);
        if (number == m_parents.size()) {
            m_parents.push_back(parent);
        }
        return number;
    }
    /// @{
    /// For several threads that add pairs at once, by SharedAdditions. `make_parents` comes between those
    /// additions and their numbers, with which each gets its parent. Where it throws std::bad_alloc, nothing has
    /// changed.
    [[nodiscard]] StateSpace::VisitedStates& states() noexcept { return m_pairs; }
    void make_parents(std::size_t pairs) { m_parents.resize(pairs); }
    void set_parent(StateNumber pair, StateNumber parent) noexcept { m_parents[pair] = parent; }
    /// @}

    /// Forgets what was reached first from this pair or a later one.
    void forget_reached_from(StateNumber parent);

    /// no_state when there is no such pair.
    [[nodiscard]] StateNumber find(Word const* pair) {
        return m_pairs.find_or_add(pair, hash(pair), 0);
    }

    /// Of the first pair, itself.
    [[nodiscard]] StateNumber parent(StateNumber pair) const noexcept { return m_parents[pair]; }

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What more would be held at some moment while `additions` more pairs are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    void move_nodes_to_front();

    std::uint32_t m_state_width;
    unsigned m_node_shift; // in the last word; 64 where it has no bit for nodes
    Word m_node_unit;      // node 1 in the last word: multiplying costs less than shifting; or 0
    bool m_has_node_word = false;
    NodeNumber m_most_node;
    StateSpace::VisitedStates m_pairs;
    std::vector<StateNumber> m_parents;
};

} // namespace Calder::Refinement
