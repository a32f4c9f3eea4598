#pragma once

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/job_additions.h"
#include "state_space/machine/run/numbered_search.h"
#include "state_space/machine/run/team.h"

#include <deque>

namespace Calder::StateSpace {

/// Explores some states in a row by all threads of a team, who share one set of states (after Laarman, van
/// de Pol and Weber, "Boosting multi-core reachability performance with shared hash tables", 2010). Everything
/// has the number and the place afterwards that one thread alone would have given it. A round has four works,
/// between which all threads wait:
///
/// 1. The states are taken in jobs, one after another. A thread finds the successors of a job's states, looks
///    them up, and adds those that are new, as SharedAdditions describes; the place of a step is the number of
///    its job, and its own there. The job notes each addition that nobody had met at a lower place by then.
/// 2. Of these each job keeps those that nobody met at a lower place by now either: all additions, each in one
///    job, in the order in which one thread would have made them. Their numbers begin where those of the jobs
///    before end.
/// 3. Additions get their numbers.
/// 4. Where transitions are kept, each job copies its own behind those of the jobs before, with the numbers.
///
/// Nothing of a round is final before the third work. When something happens in the first one (there is not
/// enough room, or memory), the additions are taken back, and it is as if the round had not been: one thread
/// then comes to what happened at its place in the order, and meets it as it would without a team.
///
/// In the later works a thread has the jobs that it took in the first one, whose memory is in its cache, and was
/// its own in earlier rounds.
///
/// A round costs four meetings of the team, some microseconds each where processors are idle, and an addition
/// 16 bytes and its words while the round lasts. Numbers are given after each round, not each level, as much of
/// what is to be written to is still in a cache then; with the second work this takes a twentieth of a run.
/// Where nobody will look at the numbers, CountingRound and UnorderedRound do without.
class NumberedRound {
  public:
    NumberedRound(Team& team, NumberedSearch& search, ConfigurationTables const& tables);

    /// Makes room. The tables of all configurations must be there, and states wide enough for them. Throws
    /// std::bad_alloc where there is no memory for it, of which one thread needs less; nothing has changed then.
    void begin(RoundSize const& size);
    /// Comes after that. How many of the states are explored: all, or none, where nothing has changed and one
    /// thread must do it.
    StateNumber explore();

    /// Of the last round.
    [[nodiscard]] std::uint64_t step_count() const noexcept { return m_steps; }

  private:
    struct alignas(64) Job {
        explicit Job(bool keep) : rows(keep) {}

        std::size_t number = 0;
        FoundRows rows; // targets that have no number yet are additions
        std::uint64_t steps = 0;
        JobAdditions additions;
        StateNumber first_number = 0;
        LtsBuilder::Room room{};
    };
    struct alignas(64) Worker {
        SearchJob search;
        LookingAhead<SharedAdditions> ahead;
        SharedAdditions::Adder adder;
        std::deque<Job> jobs; // there may be more than it has taken in this round
        std::size_t job_count = 0;
    };

    [[nodiscard]] bool explore_shared();
    void find(Worker& worker, std::size_t number) noexcept;
    void look_up(Worker& worker, Job& job);
    void for_jobs_of_each(void (NumberedRound::*work)(Job&) noexcept);
    void keep_first(Job& job) noexcept;
    [[nodiscard]] bool make_room();
    void take_back() noexcept;
    void give_numbers(Job& job) noexcept;
    void copy_rows(Job& job) noexcept;

    Team& m_team;
    NumberedSearch const& m_search;
    ReachedStates& m_states;
    ConfigurationTables const& m_tables;
    FoundRows& m_rows;
    SharedAdditions m_additions{m_states.kept()};
    RoundSize m_size{};
    std::uint64_t m_steps = 0;
    std::vector<Job*> m_jobs; // by number; null where it was not done
    std::vector<Worker> m_workers;
    std::atomic<std::int64_t> m_room_left = 0; // for additions
    std::atomic<bool> m_is_over = false;       // something happened
};

} // namespace Calder::StateSpace
