#include "state_space/machine/run/changed_words.h"

namespace Calder::StateSpace {

Word* ChangedWords::begin_other(unsigned marked_event) {
    begin_step(marked_event);
    m_other.assign(std::size_t{m_leaves} * m_leaf_words, 0);
    return m_other.data();
}

void ChangedWords::end_other() {
    for (std::uint32_t leaf = 0; leaf < m_leaves; ++leaf) {
        Word const* const before = &m_state[std::size_t{leaf} * m_leaf_words];
        Word const* const after = &m_other[std::size_t{leaf} * m_leaf_words];
        if (!std::equal(before, before + m_leaf_words, after)) {
            add(leaf, after);
        }
    }
}

} // namespace Calder::StateSpace
