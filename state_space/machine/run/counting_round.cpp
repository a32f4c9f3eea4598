#include "state_space/machine/run/counting_round.h"

#include "state_space/machine/run/round_job.h"

namespace Calder::StateSpace {

CountingRound::CountingRound(Team& team, CountingSearch& search, ConfigurationTables const& tables)
    : m_team(team), m_search(search), m_tables(tables) {
    m_search.m_workers.resize(team.size());
}

void CountingRound::begin(RoundSize const& size) {
    m_size = size;
    m_is_done.assign(size.jobs(), 0);
    m_search.m_set.make_room(size.most_additions, &m_team);
    m_room_left = static_cast<std::int64_t>(size.most_additions);
    m_steps = 0;
}

StateNumber CountingRound::explore() {
    m_search.m_working = m_search.m_workers.size();
    std::size_t const found_before = found();
    m_team.each(m_is_done.size(), [this](unsigned thread, std::size_t number) {
        explore_job(m_search.m_workers[thread], number);
    });
    m_search.m_set.note_additions(found() - found_before);
    m_search.collect_transitions();
    return put_behind();
}

std::size_t CountingRound::found() const noexcept {
    std::size_t count = 0;
    for (CountingSearch::Worker const& each : m_search.m_workers) {
        count += each.found.size();
    }
    return count;
}

/// What it throws leaves the job to the owner.
void CountingRound::explore_job(CountingSearch::Worker& worker, std::size_t number) noexcept try {
    SearchJob& job = worker.job;
    find_successors(job, m_search, m_tables, m_size, number);
    auto const steps = static_cast<std::int64_t>(job.steps().size());
    if (m_room_left.fetch_sub(steps, std::memory_order_relaxed) < steps) {
        m_room_left.fetch_add(steps, std::memory_order_relaxed);
        return;
    }
    std::size_t const found_before = worker.found.size();
    worker.look_up(m_search.m_set,
                   [this](WordSet::Hash hash) { return m_search.m_set.find_or_add_shared(hash); });
    auto const added = static_cast<std::int64_t>(worker.found.size() - found_before);
    m_room_left.fetch_add(steps - added, std::memory_order_relaxed);
    m_steps.fetch_add(job.steps().size(), std::memory_order_relaxed);
    m_is_done[number] = 1;
} catch (...) {
}

/// Moves the states of jobs that are left behind all others, and returns how many others there are.
StateNumber CountingRound::put_behind() noexcept {
    StateNumber end = m_size.last;
    for (std::size_t number = m_is_done.size(); number-- > 0;) {
        StateNumber state =
            m_is_done[number] != 0 ? m_size.first_of(number) : m_size.last_of(number);
        while (state > m_size.first_of(number)) {
            m_search.at(--end) = m_search.at(--state);
        }
    }
    return end - m_size.first;
}

} // namespace Calder::StateSpace
