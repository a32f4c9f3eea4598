#include "state_space/machine/run/round_size.h"

#include "state_space/machine/run/shared_additions.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

constexpr std::uint64_t most_sources = 1024;

/// A round has so many times the work, for each thread, after which the monitor looks around at the latest.
/// Smaller ones meet too often, larger ones have to get what they added back into the cache.
constexpr std::uint64_t most_looks_of_round = 2;

/// Room for what so many jobs add: as many as there were of so many steps, twice over, and steps of which it
/// is not known yet.
std::uint64_t additions_of(std::uint64_t jobs, SearchedSoFar const& so_far, Cut const& cut,
                           unsigned threads) noexcept {
    std::uint64_t const steps = (jobs + 1) * cut.steps_of_job;
    return 2 * (std::min(steps, steps * so_far.states / (so_far.transitions + 1)) +
                threads * cut.steps_of_job);
}

} // namespace

StateNumber sources_of_job(SearchedSoFar const& so_far, Cut const& cut) noexcept {
    return static_cast<StateNumber>(std::clamp<std::uint64_t>(
        cut.steps_of_job * (std::uint64_t{so_far.explored} + 1) / (so_far.transitions + 1), 1,
        most_sources));
}

std::optional<RoundSize> next_round(SearchedSoFar const& so_far, StateNumber end, Cut const& cut,
                                    unsigned threads, SearchMonitor const& monitor) noexcept {
    StateNumber const sources = sources_of_job(so_far, cut);
    std::uint64_t const most_jobs =
        std::min(cut.most_jobs_of_round,
                 most_looks_of_round * monitor.work_ahead() * threads / cut.steps_of_job);
    std::uint64_t const last = std::min<std::uint64_t>(end, so_far.explored + most_jobs * sources);
    std::uint64_t const jobs = (last - so_far.explored) / sources;
    std::uint64_t const additions = additions_of(jobs, so_far, cut, threads);
    if (jobs < cut.least_jobs_of_round ||
        so_far.states + additions >
            std::min(monitor.max_states(), SharedAdditions::most_states(threads))) {
        return std::nullopt;
    }
    return RoundSize{so_far.explored, static_cast<StateNumber>(last), sources,
                     static_cast<std::size_t>(additions)};
}

} // namespace Calder::StateSpace
