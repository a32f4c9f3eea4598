#pragma once

#include "state_space/exploration_options.h"
#include "state_space/export.h"

#include <algorithm>
#include <chrono>

namespace Calder::StateSpace {

/// Thrown by work deep inside a search that is to end; the monitor knows why.
struct CALDER_STATE_SPACE_EXPORT SearchEnded {};

/// What ends a search early: its limits, and the wish of whoever watches its progress. It looks
/// around after so much work: a transition explored, or an entry of a table written, counts one.
///
/// Looks are made twice as often when two are more than 10 ms apart, since a unit of work may be a
/// term of a megabyte, and half as often when they are closer.
class CALDER_STATE_SPACE_EXPORT SearchMonitor {
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
