#pragma once

#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run/row_count.h"
#include "state_space/machine/run/search_job.h"
#include "state_space/machine/run/word_list.h"
#include "state_space/machine/run/word_set.h"
#include "state_space/machine/run_result.h"

namespace Calder::StateSpace {

/// A run that only counts states and transitions, of a machine whose states are one word each, and stay so: the set
/// of the states, of which those of this level and of the next one also wait in lists. By the number of a state
/// is meant its place in the order in which states are explored, which is any order within a level.
///
/// It is asked as a NumberedSearch is.
class CountingSearch {
  public:
    CountingSearch(RunOptions const& options, Cut const& /*cut*/)
        : m_max_states(options.max_states) {}

    [[nodiscard]] StateNumber size() const noexcept { return m_set.size(); }
    [[nodiscard]] std::uint64_t transition_count() const noexcept { return m_transitions; }
    /// The words of each state.
    [[nodiscard]] std::uint32_t width() const noexcept { return form().width; }

    /// To what it is.
    void widen(std::uint32_t /*width*/) noexcept {}
    /// The state in which the machine starts; false when it is one too many.
    bool add_start(std::vector<Word> const& words);
    /// All states before this one are explored, and all on its level are known.
    void begin_level(StateNumber first);

    /// Calls `told(kept)` for states on this level, by what is kept of them, until it returns false.
    template <typename Told> void for_each(StateNumber first, StateNumber last, Told&& told) const {
        m_level.for_each(first - m_level_begin, last - m_level_begin, told);
    }
    [[nodiscard]] Word first_word(Word const* kept) const noexcept { return *kept; }
    [[nodiscard]] static SearchJob::Form form() noexcept { return {1, nullptr}; }

    /// @{
    /// One thread explores the states that come next: `begin_job` and the sources; then `take_job` looks their
    /// successors up, and returns for how many sources, before there was one state too many.
    SearchJob& begin_job(std::size_t most_steps) noexcept {
        m_workers[0].job.clear(form(), most_steps);
        return m_workers[0].job;
    }
    StateNumber take_job();
    /// @}

    /// What more would be held at some moment while `additions` more steps are taken.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        return m_set.growth_bytes(additions) +
               additions * sizeof(Word); // each waits in a list, too
    }
    /// What a round of so many steps and additions may take besides what there is.
    [[nodiscard]] std::uint64_t round_bytes(std::uint64_t /*steps*/,
                                            std::uint64_t additions) const noexcept {
        return growth_bytes(additions);
    }

    void finish(Run& result) const noexcept { result.state_bytes = m_set.memory_bytes(); }

  private:
    friend class CountingRound;

    [[nodiscard]] Word& at(StateNumber state) noexcept { return m_level[state - m_level_begin]; }
    void collect_transitions() noexcept;

    /// What a thread has for itself.
    struct alignas(64) Worker {
        template <typename FindOrAdd> StateNumber look_up(WordSet const& set, FindOrAdd&& each);

        SearchJob job;
        WordList found; // of the next level
        std::uint64_t transitions = 0;
        RowCount row_count;
    };

    StateNumber const m_max_states;
    WordSet m_set;
    WordList m_level;
    StateNumber m_level_begin = 0;
    std::uint64_t m_transitions = 0;
    /// The first is the owner's, the others come with the first round.
    std::vector<Worker> m_workers = std::vector<Worker>(1);
    /// Those of them who may have found something on this level: to ask all of many threads after each level
    /// would take most of a run whose levels are small.
    std::size_t m_working = 1;
};

/// Looks up the successors of the job; `each(hash)` tells what WordSet says of one. Those that it adds are found.
/// Returns for how many sources, before there was one state too many; the transitions of these are counted. Throws
/// std::bad_alloc: what was added by then is found, and no transition counted.
template <typename FindOrAdd>
StateNumber CountingSearch::Worker::look_up(WordSet const& set, FindOrAdd&& each) {
    constexpr std::size_t distance = 32;
    Steps const& steps = job.steps();
    std::span<std::uint64_t const> const hashes = job.hashes();
    found.make_room(steps.size());
    for (std::size_t step = 0; step < std::min(distance, hashes.size()); ++step) {
        set.prefetch(hashes[step]);
    }
    std::uint64_t counted = 0;
    StateNumber done = 0;
    std::size_t first = 0;
    for (; done < job.source_count(); ++done) {
        std::size_t const last = job.row_end(done);
        for (std::size_t step = first; step < last; ++step) {
            if (step + distance < hashes.size()) {
                set.prefetch(hashes[step + distance]);
            }
            WordSet::Found const is = each(hashes[step]);
            if (is == WordSet::Found::added) {
                found.add(*steps.words(step));
            } else if (is == WordSet::Found::one_too_many) {
                transitions += counted;
                return done;
            }
        }
        counted += row_count.of_row(steps, first, last);
        first = last;
    }
    transitions += counted;
    return done;
}

} // namespace Calder::StateSpace
