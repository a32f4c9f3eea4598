#pragma once

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/counting_search.h"
#include "state_space/machine/run/team.h"

namespace Calder::StateSpace {

/// Explores some states of a level by all threads of a team, who share one set of states (after Laarman, van de Pol
/// and Weber, "Boosting multi-core reachability performance with shared hash tables", 2010). The states are taken
/// in jobs, one after another; a thread finds the successors of a job's states, looks them up, and adds those
/// that are new.
///
/// A job for which there is not enough room, or memory, is left to the owner: its states change places with others,
/// and are the last ones of the round. What such a job has added by then stays, as its states will lead there.
class CountingRound {
  public:
    /// Throws std::bad_alloc.
    CountingRound(Team& team, CountingSearch& search, ConfigurationTables const& tables);

    /// Makes room. Throws std::bad_alloc where there is no memory for it, of which one thread needs less; nothing
    /// has changed then.
    void begin(RoundSize const& size);
    /// Comes after that. How many of the states are explored; those that come behind them are left.
    StateNumber explore();

    /// Of the last round.
    [[nodiscard]] std::uint64_t step_count() const noexcept {
        return m_steps.load(std::memory_order_relaxed);
    }

  private:
    void explore_job(CountingSearch::Worker& worker, std::size_t number) noexcept;
    [[nodiscard]] std::size_t found() const noexcept;
    [[nodiscard]] StateNumber put_behind() noexcept;

    Team& m_team;
    CountingSearch& m_search;
    ConfigurationTables const& m_tables;
    RoundSize m_size{};
    std::vector<unsigned char> m_is_done;      // by job
    std::atomic<std::int64_t> m_room_left = 0; // for additions
    std::atomic<std::uint64_t> m_steps = 0;
};

} // namespace Calder::StateSpace
