#pragma once

#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run/row_count.h"
#include "state_space/machine/run/search_job.h"
#include "state_space/machine/run/state_list.h"
#include "state_space/machine/run/state_set.h"
#include "state_space/machine/run_result.h"

#include <memory>

namespace Calder::StateSpace {

/// A run that only counts states and transitions: the set of the states, of which those of this level and of the
/// next one also wait in lists. By the number of a state is meant its place in the order in which states are
/// explored, which is any order within a level.
///
/// It is asked as a NumberedSearch is.
class CountingSearch {
  public:
    CountingSearch(RunOptions const& options, Cut const& cut);

    [[nodiscard]] StateNumber size() const noexcept { return m_set.size(); }
    [[nodiscard]] std::uint64_t transition_count() const noexcept;
    /// The words of each state.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_width; }

    /// Makes the states `width` words long, the new ones zero. Throws std::bad_alloc, and is then as before.
    void widen(std::uint32_t width);
    /// The state in which the machine starts; false when it is one too many.
    bool add_start(std::vector<Word> const& words);
    /// All states before this one are explored, and all on its level are known.
    void begin_level(StateNumber first);

    /// Calls `told(kept)` for states on this level, by what is kept of them, until it returns false.
    template <typename Told> void for_each(StateNumber first, StateNumber last, Told&& told) const {
        m_level.for_each(first - m_level_begin, last - m_level_begin, told);
    }
    [[nodiscard]] Word first_word(Word const* kept) const noexcept {
        return m_tree ? m_tree->first_word(kept) : *kept;
    }

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
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;
    /// What a round of so many steps and additions may take besides what there is.
    [[nodiscard]] std::uint64_t round_bytes(std::uint64_t steps,
                                            std::uint64_t additions) const noexcept;

    void finish(Run& result);

  private:
    friend class CountingRound;

    /// What a thread has for itself.
    struct alignas(64) Worker {
        explicit Worker(std::uint32_t kept_width) : found(kept_width) {}

        template <typename FindOrAdd> StateNumber look_up(StateSet const& set, FindOrAdd&& each);

        SearchJob job;
        StateList found; // of the next level
        std::uint64_t transitions = 0;
        RowCount row_count;
    };

    [[nodiscard]] Word* words(StateNumber state) const noexcept {
        return m_level.words(state - m_level_begin);
    }
    [[nodiscard]] SearchJob::Form form() const noexcept { return {m_width, m_tree.get()}; }

    StateNumber const m_max_states;
    std::uint32_t const m_most_plain_words;
    unsigned const m_threads;
    std::uint32_t m_width = 1;
    std::unique_ptr<StateTree> m_tree; // null where the words are kept
    StateSet m_set{1};
    StateList m_level{1};
    StateNumber m_level_begin = 0;
    std::vector<Worker> m_workers; // the first is the owner's
};

/// Looks up the successors of the job; `each(words, hash)` tells what StateSet says of one. Those that it adds are
/// found. Throws std::bad_alloc: what was added by then is found, and no transition counted.
template <typename FindOrAdd>
StateNumber CountingSearch::Worker::look_up(StateSet const& set, FindOrAdd&& each) {
    constexpr std::size_t distance = 32;
    Steps const& steps = job.steps();
    found.make_room(steps.size());
    bool const has_others = set.width() > 1;
    for (std::size_t step = 0; step < std::min(distance, steps.size()); ++step) {
        set.prefetch(job.hash(step));
    }
    StateNumber done = 0;
    std::uint64_t counted = 0;
    std::size_t first = 0;
    for (; done < job.source_count(); ++done) {
        std::size_t const last = job.row_end(done);
        for (std::size_t step = first; step < last; ++step) {
            if (step + distance < steps.size()) {
                set.prefetch(job.hash(step + distance));
            }
            if (has_others && step + distance / 2 < steps.size()) {
                set.prefetch_others(job.hash(step + distance / 2));
            }
            switch (each(steps.words(step), job.hash(step))) {
            case StateSet::Found::known: break;
            case StateSet::Found::added: found.add(steps.words(step)); break;
            case StateSet::Found::one_too_many: transitions += counted; return done;
            }
        }
        counted += row_count.of_row(steps, first, last);
        first = last;
    }
    transitions += counted;
    return done;
}

} // namespace Calder::StateSpace
