#pragma once

#include "state_space/labelled_transition_system.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <string_view>

namespace Calder::StateSpace {

/// How a search ended.
enum class Outcome {
    /// Every state reachable from the start is explored.
    complete,
    state_limit,
    /// The limit on memory was reached, or there was none left to be had.
    memory_limit,
    /// A term was nested so deeply that the stack would not have sufficed.
    nesting_limit,
    /// The progress function said so.
    interrupted,
};

/// A part of a sentence for people, such as "the limit on states was reached".
[[nodiscard]] std::string_view describe(Outcome outcome);

/// How far a search has got.
struct Progress {
    StateNumber states = 0;
    std::uint64_t transitions = 0;
    /// States whose transitions are all known.
    StateNumber explored = 0;
    /// States that are still to be explored.
    StateNumber frontier = 0;
    /// How many steps the state that is being explored is from the start.
    StateNumber depth = 0;
    /// The resident set of the process, in bytes.
    std::uint64_t memory = 0;
};

struct ExplorationOptions {
    /// How many states are kept at most. A process with exactly that many is explored completely.
    StateNumber max_states = no_state;
    /// For the resident set of the process, in bytes; 0 means no limit. The moments when an array
    /// is copied to grow are reckoned with.
    std::uint64_t max_memory = 0;
    /// Called about every 4096 transitions of terms, or 65536 of a machine, and more often where
    /// they take long, also before the first of them; while a machine is made, as often. Answers
    /// whether to go on.
    std::function<bool(Progress const&)> progress = nullptr;
};

/// Thrown by work deep inside a search that is to end; the monitor knows why.
struct SearchEnded {};

/// What ends a search early: its limits, and the wish of whoever watches its progress. It looks
/// around after so much work: a transition explored, or an entry of a table written, counts one.
///
/// Looks are made twice as often when two are more than 10 ms apart, since a unit of work may be a
/// term of a megabyte, and half as often when they are closer.
class SearchMonitor {
  public:
    /// A look costs some microseconds, so the longest interval should take a millisecond.
    static constexpr std::uint64_t longest_for_terms = 4096;
    static constexpr std::uint64_t longest_for_machines = 65536;

    /// The options must outlive it.
    SearchMonitor(ExplorationOptions const& options, std::uint64_t longest_interval);
    SearchMonitor(SearchMonitor const&) = delete;
    SearchMonitor& operator=(SearchMonitor const&) = delete;

    [[nodiscard]] StateNumber max_states() const noexcept { return m_options.max_states; }
    [[nodiscard]] Outcome outcome() const noexcept { return m_outcome; }

    /// For the caller's own reasons to end. Returns false.
    bool stop(Outcome outcome) noexcept {
        m_outcome = outcome;
        return false;
    }

    /// For a caller who can do without what a limit ended: forgets that one was met. False when the wish
    /// of whoever watches ended it, which stays.
    [[nodiscard]] bool do_without() noexcept {
        m_outcome = m_outcome == Outcome::interrupted ? m_outcome : Outcome::complete;
        return m_outcome == Outcome::complete;
    }

    /// Counts work; whether it is time to look around.
    [[nodiscard]] bool is_due(std::uint64_t work = 1) noexcept {
        m_until_look -= std::min(work, m_until_look);
        return m_until_look == 0;
    }

    /// How much work there is at most before the look after the next one.
    [[nodiscard]] std::uint64_t work_ahead() const noexcept { return m_interval * 2; }

    /// False when the search is to end. `growth` is what may be allocated besides what there is, in
    /// bytes, while `work_ahead` is done. Of the progress, all but the memory is the caller's.
    [[nodiscard]] bool look_around(Progress const& progress, std::uint64_t growth);

    /// Whether the last look is longer ago than looks are wanted apart, whatever was counted.
    [[nodiscard]] bool is_overdue() const noexcept;

    /// For work on what the search needs, which finds no states: counts it, and looks around when
    /// it is time. Throws SearchEnded.
    void go_on(std::uint64_t work, std::uint64_t growth = 0) {
        if (is_due(work) && !look_around(m_progress, growth)) {
            throw SearchEnded();
        }
    }

    /// What was left up to the limit at the last look, or at first, in bytes.
    [[nodiscard]] std::uint64_t memory_left() const noexcept;

  private:
    using Clock = std::chrono::steady_clock;

    void adapt_interval();

    static constexpr std::uint64_t first_interval = 64;

    ExplorationOptions const& m_options;
    std::uint64_t m_longest_interval;
    std::uint64_t m_interval = first_interval;
    std::uint64_t m_until_look = first_interval;
    Clock::time_point m_last_look = Clock::now();
    Progress m_progress{}; // as told last
    Outcome m_outcome = Outcome::complete;
};

} // namespace Calder::StateSpace
