#pragma once

#include "state_space/machine/run/found_rows.h"
#include "state_space/machine/run/looking_ahead.h"
#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run_result.h"

namespace Calder::StateSpace {

/// A run that numbers the states in the order in which they are first reached, and keeps the transitions, or
/// counts them.
class NumberedSearch {
  public:
    NumberedSearch(RunOptions const& options, Cut const& cut);

    [[nodiscard]] StateNumber size() const noexcept { return m_states->size(); }
    [[nodiscard]] std::uint64_t transition_count() const noexcept {
        return m_rows.transition_count();
    }
    /// The words of each state.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_states->width(); }

    /// Makes the states `width` words long, the new ones zero. Throws std::bad_alloc, and the states are then as
    /// before, though perhaps not to be found any more.
    void widen(std::uint32_t width) { m_states->widen(width); }
    /// The state in which the machine starts; false when it is one too many.
    bool add_start(std::vector<Word> const& words) {
        return m_states->find_or_add(words.data(), m_max_states) != no_state;
    }
    /// All states before this one are explored, and all on its level are known.
    void begin_level(StateNumber /*first*/) noexcept {}

    /// Calls `told(kept)` for some states, by what is kept of them, until it returns false.
    template <typename Told> void for_each(StateNumber first, StateNumber last, Told&& told) const {
        for (StateNumber state = first; state < last && told(m_states->kept().words(state));
             ++state) {
        }
    }
    [[nodiscard]] Word first_word(Word const* kept) const noexcept {
        return m_states->first_word_of(kept);
    }
    [[nodiscard]] SearchJob::Form form() const noexcept { return m_states->form(); }

    /// @{
    /// One thread explores the states that come next: `begin_job` and the sources; then `take_job` looks their
    /// successors up, and returns for how many sources, before there was one state too many.
    SearchJob& begin_job(std::size_t most_steps) noexcept {
        m_job.clear(form(), most_steps);
        return m_job;
    }
    StateNumber take_job();
    /// @}

    /// What more would be held at some moment while `additions` more steps are taken.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        return m_states->growth_bytes(additions) + m_rows.growth_bytes(additions);
    }
    /// What a round of so many steps and additions may take besides what there is.
    [[nodiscard]] std::uint64_t round_bytes(std::uint64_t steps,
                                            std::uint64_t additions) const noexcept;

    void finish(Run& result);

  private:
    friend class NumberedRound;
    friend class UnorderedRound;

    StateNumber const m_max_states;
    unsigned const m_threads;
    std::shared_ptr<ReachedStates> m_states;
    FoundRows m_rows;
    SearchJob m_job;
    LookingAhead<VisitedStates> m_ahead;
};

} // namespace Calder::StateSpace
