#include "refinement/visited_pairs.h"

#include "state_space/memory.h"

#include <algorithm>

namespace Calder::Refinement {

using StateSpace::VisitedStates;

namespace {

constexpr unsigned word_bits = 64;
constexpr unsigned most_node_bits = 31; // leaves out what is not a node

NodeNumber most_node_of(unsigned spare_bits) {
    return (NodeNumber{1} << std::min(spare_bits, most_node_bits)) - 1;
}

} // namespace

VisitedPairs::VisitedPairs(std::uint32_t state_width, unsigned spare_bits)
    : m_state_width(state_width), m_node_shift(word_bits - spare_bits),
      m_node_unit(spare_bits == 0 ? 0 : Word{1} << m_node_shift),
      m_most_node(most_node_of(spare_bits)), m_pairs(state_width) {}

NodeNumber VisitedPairs::node(StateNumber pair) const noexcept {
    Word const* const words = m_pairs.words(pair);
    if (m_has_node_word) {
        return static_cast<NodeNumber>(words[0]);
    }
    return m_node_shift == word_bits
               ? 0
               : static_cast<NodeNumber>(words[m_state_width - 1] >> m_node_shift);
}

void VisitedPairs::read_state(StateNumber pair, Word* state) const noexcept {
    Word const* const words = m_pairs.words(pair);
    StateSpace::copy_words(words + (m_has_node_word ? 1 : 0), state, m_state_width);
    if (!m_has_node_word && m_node_shift != word_bits) {
        state[m_state_width - 1] &= (Word{1} << m_node_shift) - 1;
    }
}

void VisitedPairs::make_fit(std::uint32_t state_width, NodeNumber most_node) {
    if (most_node > m_most_node) {
        move_nodes_to_front();
    }
    if (state_width != m_state_width) {
        m_pairs.widen(m_pairs.width() + state_width - m_state_width);
        m_state_width = state_width;
    }
}

void VisitedPairs::move_nodes_to_front() {
    VisitedStates wide(m_state_width + 1);
    wide.make_room(size());
    std::vector<Word> words(m_state_width + 1);
    for (StateNumber pair = 0; pair < size(); ++pair) {
        words[0] = node(pair);
        read_state(pair, &words[1]);
        wide.find_or_add(words.data(), VisitedStates::hash(words.data(), wide.width()),
                         StateSpace::no_state);
    }
    m_pairs = std::move(wide);
    m_has_node_word = true;
    m_node_unit = 0;
    m_most_node = not_known - 1;
}

/// Parents ascend.
void VisitedPairs::forget_reached_from(StateNumber parent) {
    auto const first = std::lower_bound(m_parents.begin() + 1, m_parents.end(), parent);
    m_pairs.forget_from(static_cast<StateNumber>(first - m_parents.begin()));
    m_parents.erase(first, m_parents.end());
}

std::uint64_t VisitedPairs::memory_bytes() const noexcept {
    return m_pairs.memory_bytes() + StateSpace::allocated_bytes(m_parents);
}

std::uint64_t VisitedPairs::growth_bytes(std::uint64_t additions) const noexcept {
    return m_pairs.growth_bytes(additions) + StateSpace::growth_bytes(m_parents, additions);
}

} // namespace Calder::Refinement
