#include "state_space/machine/run/shared_round.h"

#include <algorithm>

namespace Calder::StateSpace {

SharedRound::SharedRound(Team& team, VisitedStates& states, ConfigurationTables const& tables,
                         FoundRows& rows)
    : m_team(team), m_states(states), m_tables(tables), m_rows(rows), m_workers(team.size()) {}

bool SharedRound::explore(RoundSize const& size) {
    begin(size);
    m_team.each(m_job_count,
                [this](unsigned thread, std::size_t number) { find(m_workers[thread], number); });
    if (m_is_over) {
        take_back();
        return false;
    }
    for_jobs_of_each(&SharedRound::keep_first);
    if (!make_room()) {
        take_back();
        return false;
    }
    for_jobs_of_each(&SharedRound::give_numbers);
    if (m_rows.keeps()) {
        for_jobs_of_each(&SharedRound::copy_rows);
    }
    StateNumber added = 0;
    for (std::size_t number = 0; number < m_job_count; ++number) {
        added += static_cast<StateNumber>(m_jobs[number].additions.size());
    }
    m_additions.end(added);
    return true;
}

void SharedRound::begin(RoundSize const& size) {
    m_size = size;
    m_job_count = size.jobs();
    while (m_jobs.size() < m_job_count) {
        m_jobs.emplace_back(m_rows.keeps());
    }
    for (std::size_t number = 0; number < m_job_count; ++number) {
        m_jobs[number].additions.clear();
    }
    for (Worker& worker : m_workers) {
        worker.adder = {};
        worker.jobs.clear();
    }
    m_additions.begin(size.most_additions, m_team);
    m_room_left = static_cast<std::int64_t>(size.most_additions);
    m_is_over = false;
}

/// The first work. What it throws ends the round.
void SharedRound::find(Worker& worker, std::size_t number) noexcept try {
    if (m_is_over.load(std::memory_order_relaxed)) {
        return;
    }
    StateNumber const first = m_size.first + static_cast<StateNumber>(number) * m_size.sources;
    StateNumber const last = std::min(first + m_size.sources, m_size.last);
    SearchJob& search = worker.search;
    search.clear(m_states.width(), m_size.most_steps);
    for (StateNumber source = first; source < last; ++source) {
        Word const* const words = m_states.words(source);
        search.add_source(words, m_tables.table(m_tables.configuration_of(words)));
    }
    search.search();
    auto const steps = static_cast<std::int64_t>(search.steps().size());
    if (m_room_left.fetch_sub(steps, std::memory_order_relaxed) < steps) {
        m_is_over = true;
        return;
    }
    worker.jobs.push_back(number);
    look_up(worker, number);
    auto const added = static_cast<std::int64_t>(m_jobs[number].additions.size());
    m_room_left.fetch_add(steps - added, std::memory_order_relaxed);
} catch (...) {
    m_is_over = true;
}

void SharedRound::look_up(Worker& worker, std::size_t number) {
    Job& job = m_jobs[number];
    SearchJob const& search = worker.search;
    Steps const& steps = search.steps();
    job.rows.clear();
    job.steps = steps.size();
    job.additions.make_room(steps.size());
    worker.ahead.begin(m_additions, search.hashes());
    auto const target_of = [&](std::size_t step) {
        StateNumber const likely = worker.ahead.likely_target(m_additions, search.hashes(), step);
        Word const* const words = steps.words(step);
        SharedAdditions::Found const found =
            likely != no_state && m_additions.is_state(likely, words)
                ? m_additions.meet(likely, JobAdditions::place(number, step))
                : m_additions.find_or_add(words, search.hash(step),
                                          JobAdditions::place(number, step), worker.adder);
        job.additions.note(step, found);
        return found.state;
    };
    std::size_t first = 0;
    for (std::size_t source = 0; source < search.source_count(); ++source) {
        job.rows.add_row(steps, first, search.row_end(source), target_of);
        first = search.row_end(source);
    }
}

void SharedRound::for_jobs_of_each(void (SharedRound::*work)(std::size_t) noexcept) {
    m_team.all([this, work](unsigned thread) {
        for (std::size_t const number : m_workers[thread].jobs) {
            (this->*work)(number);
        }
    });
}

/// The second work.
void SharedRound::keep_first(std::size_t number) noexcept {
    m_jobs[number].additions.keep_first(m_additions, number);
}

/// For all that the round has found, job after job. False when there is no memory for it; nothing has
/// changed then.
bool SharedRound::make_room() try {
    std::uint64_t steps = 0;
    std::uint64_t transitions = 0;
    StateNumber states = m_states.size();
    for (std::size_t number = 0; number < m_job_count; ++number) {
        Job& job = m_jobs[number];
        job.first_number = states;
        job.room = {number * m_size.sources, transitions};
        states += static_cast<StateNumber>(job.additions.size());
        steps += job.steps;
        transitions += job.rows.transition_count();
    }
    m_additions.make_room_for_words(states);
    LtsBuilder::Room const room = m_rows.make_room(m_size.last - m_size.first, transitions);
    for (std::size_t number = 0; number < m_job_count; ++number) {
        m_jobs[number].room.first_row += room.first_row;
        m_jobs[number].room.first_transition += room.first_transition;
    }
    m_steps = steps;
    return true;
} catch (std::bad_alloc const&) {
    return false;
}

void SharedRound::take_back() noexcept {
    for (std::size_t number = 0; number < m_job_count; ++number) {
        m_jobs[number].additions.take_back(m_additions);
    }
}

/// The third work.
void SharedRound::give_numbers(std::size_t number) noexcept {
    m_jobs[number].additions.give_numbers(m_additions, m_jobs[number].first_number);
}

/// The fourth work.
void SharedRound::copy_rows(std::size_t number) noexcept {
    Job const& job = m_jobs[number];
    m_rows.copy(job.rows, job.room,
                [this](StateNumber target) { return m_additions.number(target); });
}

} // namespace Calder::StateSpace
