#pragma once

#include "state_space/machine/run/steps.h"

#include <algorithm>
#include <vector>

namespace Calder::StateSpace {

/// Successors of states as what each of them changes: a state's words are cut into leaves of so many words, and a
/// step has those that are not its source's. What a step costs follows what it changes, not the width of the state.
class CALDER_STATE_SPACE_EXPORT ChangedWords {
  public:
    struct Change {
        std::uint32_t source;
        std::uint32_t step;
        std::uint32_t leaf;
    };

    void clear(std::uint32_t leaf_words) noexcept {
        m_leaf_words = leaf_words;
        m_changes.clear();
        m_are_sorted = true;
    }

    /// The steps that come next are those of this state, of `leaves` leaves, which must stay where they are
    /// meanwhile. To `steps`, which are as wide as `root`, each is added as that, as if it changed nothing.
    void begin(std::uint32_t source, Word const* state, std::uint32_t leaves, Word const* root,
               Steps& steps) noexcept {
        m_source = source;
        m_state = state;
        m_leaves = leaves;
        m_root = root;
        m_steps = &steps;
    }

    /// Step after step.
    [[nodiscard]] std::vector<Change> const& all() const noexcept { return m_changes; }
    /// Whether those of each step ascend by leaf.
    [[nodiscard]] bool are_sorted() const noexcept { return m_are_sorted; }
    /// The words of the leaf.
    [[nodiscard]] Word const* words(std::size_t change) const noexcept {
        return &m_words[change * m_leaf_words];
    }

    /// @{
    /// As SuccessorTable tells of steps: after `make_room`, a step that changes some words is `begin_step` and the
    /// sums by which they change; one to a state of another layout is `begin_other`, which gives words of zeros
    /// to write to, and `end_other`.
    void make_room(std::size_t steps) { m_steps->make_room(steps); }
    void begin_step(unsigned marked_event);
    void change(std::uint32_t word, Word difference);
    Word* begin_other(unsigned marked_event);
    void end_other();
    /// @}

  private:
    Word* add(std::uint32_t leaf, Word const* words);

    std::uint32_t m_leaf_words = 1;
    std::vector<Change> m_changes;
    std::vector<Word> m_words; // change after change; there may be more
    bool m_are_sorted = true;

    std::uint32_t m_source = 0;
    Word const* m_state = nullptr;
    std::uint32_t m_leaves = 0;
    Word const* m_root = nullptr;
    Steps* m_steps = nullptr;
    std::uint32_t m_step = 0;
    std::size_t m_first = 0; // of the step's changes
    // Of these, the leaves: none outside was changed.
    std::uint32_t m_least_leaf = 0;
    std::uint32_t m_most_leaf = 0;
    std::vector<Word> m_other; // what the step leads to
};

inline void ChangedWords::begin_step(unsigned marked_event) {
    m_step = static_cast<std::uint32_t>(m_steps->size());
    m_first = m_changes.size();
    copy_words(m_root, m_steps->add(marked_event), m_steps->width());
}

/// Most steps change one leaf or two. Those that change very many do so in order, or back: then a leaf that comes next
/// is not looked for among them.
inline void ChangedWords::change(std::uint32_t word, Word difference) {
    std::uint32_t const leaf = word / m_leaf_words;
    std::uint32_t const place = word % m_leaf_words;
    bool const may_be_there = m_least_leaf <= leaf && leaf <= m_most_leaf;
    for (std::size_t i = m_changes.size(); may_be_there && i > m_first; --i) {
        if (m_changes[i - 1].leaf == leaf) {
            m_words[(i - 1) * m_leaf_words + place] += difference;
            return;
        }
    }
    add(leaf, &m_state[std::size_t{leaf} * m_leaf_words])[place] += difference;
}

inline Word* ChangedWords::add(std::uint32_t leaf, Word const* words) {
    bool const is_only = m_changes.size() == m_first;
    m_are_sorted = m_are_sorted && (is_only || m_changes.back().leaf < leaf);
    m_least_leaf = is_only ? leaf : std::min(m_least_leaf, leaf);
    m_most_leaf = is_only ? leaf : std::max(m_most_leaf, leaf);
    std::size_t const begin = m_changes.size() * m_leaf_words;
    m_changes.push_back({m_source, m_step, leaf});
    if (m_words.size() < begin + m_leaf_words) {
        m_words.resize(2 * (begin + m_leaf_words));
    }
    copy_words(words, &m_words[begin], m_leaf_words);
    return &m_words[begin];
}

} // namespace Calder::StateSpace
