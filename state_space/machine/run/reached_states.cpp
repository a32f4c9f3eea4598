#include "state_space/machine/run/reached_states.h"

namespace Calder::StateSpace {

std::vector<Word> ReachedStates::words(StateNumber state) const {
    Word const* const kept = m_kept.words(state);
    return m_tree ? m_tree->words(kept, m_width) : std::vector(kept, kept + m_width);
}

void ReachedStates::widen(std::uint32_t width) {
    if (width <= m_most_plain_words) {
        m_kept.widen(width);
    } else if (!m_tree || width > m_tree->width()) {
        plant_tree(width);
    }
    m_width = width;
}

StateNumber ReachedStates::find_or_add(Word const* words, StateNumber max_states) {
    StateTree::Node root{};
    if (m_tree) {
        root = m_tree->root_of(words, m_width);
        words = root.data();
    }
    m_kept.make_room(1);
    return m_kept.find_or_add(words, VisitedStates::hash(words, m_kept.width()), max_states);
}

/// The states anew, each by its root.
void ReachedStates::plant_tree(std::uint32_t width) {
    auto tree = std::make_unique<StateTree>(width);
    VisitedStates roots(StateTree::node_words);
    roots.make_room(size());
    for (StateNumber state = 0; state < size(); ++state) {
        StateTree::Node const root = tree->root_of(words(state).data(), m_width);
        roots.find_or_add(root.data(), VisitedStates::hash(root.data(), roots.width()), no_state);
    }
    m_kept = std::move(roots);
    m_tree = std::move(tree);
}

} // namespace Calder::StateSpace
