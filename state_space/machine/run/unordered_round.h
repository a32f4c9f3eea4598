#pragma once

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/numbered_search.h"
#include "state_space/machine/run/team.h"
#include "state_space/machine/run/unordered_additions.h"

namespace Calder::StateSpace {

/// Explores some states in a row by all threads of a team, who share one set of states, as NumberedRound does, where
/// nobody will look at the numbers, nor at the transitions: additions get any numbers behind those of the states
/// that were there, at once, and there is nothing to be done after the first work.
///
/// When something happens (there is not enough room, or memory), all additions are taken back.
class UnorderedRound {
  public:
    UnorderedRound(Team& team, NumberedSearch& search, ConfigurationTables const& tables);

    /// Makes room. The tables of all configurations must be there, and states wide enough for them. Throws
    /// std::bad_alloc where there is no memory for it, of which one thread needs less; nothing has changed then.
    void begin(RoundSize const& size);
    /// Comes after that. How many of the states are explored: all, or none, where nothing has changed and one
    /// thread must do it.
    StateNumber explore();

    /// Of the last round.
    [[nodiscard]] std::uint64_t step_count() const noexcept { return m_steps; }

  private:
    struct alignas(64) Worker {
        SearchJob search;
        LookingAhead<UnorderedAdditions> ahead;
        FoundRows rows{false};
        std::uint64_t steps = 0;
    };

    void explore_job(unsigned thread, std::size_t number) noexcept;
    std::size_t look_up(Worker& worker, unsigned thread);

    Team& m_team;
    NumberedSearch const& m_search;
    ReachedStates& m_states;
    ConfigurationTables const& m_tables;
    FoundRows& m_rows;
    UnorderedAdditions m_additions;
    RoundSize m_size{};
    std::uint64_t m_steps = 0;
    std::vector<Worker> m_workers;
    std::atomic<std::int64_t> m_room_left = 0; // for additions
    std::atomic<bool> m_is_over = false;       // something happened
};

} // namespace Calder::StateSpace
