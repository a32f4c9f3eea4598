#pragma once

#include "state_space/export.h"
#include "state_space/search_monitor.h"

#include <algorithm>
#include <optional>

namespace Calder::StateSpace {

/// How a search is cut up and its states are kept. What it finds does not depend on it, but for how much of the
/// batch in which a question is decided has been counted.
struct Cut {
    /// Steps wanted of one job, or of a batch that one thread does: what stays in a core's own cache, and makes
    /// handing it over cheap.
    std::uint64_t steps_of_job = 4096;
    /// Fewer jobs than these are done by one thread sooner than a team has met.
    std::uint64_t least_jobs_of_round = 4;
    /// More are not done at once; how often the monitor wants to look bounds them, too.
    std::uint64_t most_jobs_of_round = ~std::uint64_t{0};
    /// Of states that are kept as they are; wider ones are kept as the roots of a tree. With more, states take
    /// more memory than most roots and what is below them, though up to eight words less time.
    std::uint32_t most_plain_words = 4;
};

/// How far a search has come: the states found, how many of them are explored, the first ones, and the
/// transitions of those.
struct SearchedSoFar {
    StateNumber states;
    StateNumber explored;
    std::uint64_t transitions;
};

/// Of one round, in which all threads explore states in a row, job by job.
struct RoundSize {
    StateNumber first;
    StateNumber last;
    /// In each job.
    StateNumber sources;
    /// States that may be added, those not counted that turn out to be known.
    std::size_t most_additions;
    /// That one job may have.
    std::size_t most_steps = 0;

    [[nodiscard]] std::size_t jobs() const noexcept {
        return (last - first + sources - 1) / sources;
    }
    /// @{
    /// The states of a job: from the first one up to the last.
    [[nodiscard]] StateNumber first_of(std::size_t job) const noexcept {
        return first + static_cast<StateNumber>(job) * sources;
    }
    [[nodiscard]] StateNumber last_of(std::size_t job) const noexcept {
        return std::min(first_of(job) + sources, last);
    }
    /// @}
};

/// How many states make a job, by how many transitions they had so far.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT StateNumber sources_of_job(SearchedSoFar const& so_far,
                                                                   Cut const& cut) noexcept;

/// The next round before `end`; nothing where too little is left for several threads, or there could be more
/// states than the limit.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::optional<RoundSize>
next_round(SearchedSoFar const& so_far, StateNumber end, Cut const& cut, unsigned threads,
           SearchMonitor const& monitor) noexcept;

} // namespace Calder::StateSpace
