#pragma once

#include "state_space/machine/run/search_job.h"

#include <memory>

namespace Calder::StateSpace {

/// The states that a run of a machine has reached. Those of few words are kept as they are, wider ones as the
/// roots of a tree.
class CALDER_STATE_SPACE_EXPORT ReachedStates {
  public:
    /// Those of more words than these are wider: see Cut.
    explicit ReachedStates(std::uint32_t most_plain_words) : m_most_plain_words(most_plain_words) {}

    [[nodiscard]] StateNumber size() const noexcept { return m_kept.size(); }
    /// The words of each state.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_width; }

    [[nodiscard]] std::vector<Word> words(StateNumber state) const;
    [[nodiscard]] Word first_word(StateNumber state) const noexcept {
        return first_word_of(m_kept.words(state));
    }
    /// The same by what is kept of the state.
    [[nodiscard]] Word first_word_of(Word const* kept) const noexcept {
        return m_tree ? m_tree->first_word(kept) : *kept;
    }

    /// Makes the states `width` words long, the new ones zero; they are never made shorter. Where that throws
    /// std::bad_alloc, the states are as before, though perhaps not to be found any more.
    void widen(std::uint32_t width);

    /// The state of so many words, which is added when it is new; no_state when it is new and there are
    /// `max_states` already. For one state now and then: successors are looked up as they are kept.
    StateNumber find_or_add(Word const* words, StateNumber max_states);

    /// What is kept of the states, with their numbers.
    [[nodiscard]] VisitedStates& kept() noexcept { return m_kept; }
    [[nodiscard]] VisitedStates const& kept() const noexcept { return m_kept; }
    /// By which these are read; null where they are the words.
    [[nodiscard]] StateTree* tree() const noexcept { return m_tree.get(); }
    [[nodiscard]] SearchJob::Form form() const noexcept { return {m_width, m_tree.get()}; }

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept {
        return m_kept.memory_bytes() + (m_tree ? m_tree->memory_bytes() : 0);
    }
    /// What more would be held at some moment while `additions` more states are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        return m_kept.growth_bytes(additions) + (m_tree ? m_tree->growth_bytes(additions) : 0);
    }
    /// The same while so many threads add them at once.
    [[nodiscard]] std::uint64_t sharing_bytes(std::uint64_t additions,
                                              unsigned threads) const noexcept {
        return m_kept.growth_bytes(additions) +
               (m_tree ? m_tree->sharing_bytes(additions, size(), threads) : 0);
    }

  private:
    void plant_tree(std::uint32_t width);

    std::uint32_t m_most_plain_words;
    std::uint32_t m_width = 1;
    VisitedStates m_kept{1};
    std::unique_ptr<StateTree> m_tree;
};

} // namespace Calder::StateSpace
