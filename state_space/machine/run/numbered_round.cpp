#include "state_space/machine/run/numbered_round.h"

#include "state_space/machine/run/round_job.h"

#include <algorithm>

namespace Calder::StateSpace {

NumberedRound::NumberedRound(Team& team, NumberedSearch& search, ConfigurationTables const& tables)
    : m_team(team), m_search(search), m_states(*search.m_states), m_tables(tables),
      m_rows(search.m_rows), m_workers(team.size()) {}

void NumberedRound::begin(RoundSize const& size) {
    m_size = size;
    m_steps = 0;
    m_jobs.assign(size.jobs(), nullptr);
    for (Worker& worker : m_workers) {
        worker.adder = {};
        worker.job_count = 0;
    }
    m_additions.begin(size.most_additions, m_team);
    if (StateTree* const tree = m_states.tree()) {
        tree->begin_sharing(size.most_additions, m_states.size(), m_team);
    }
    m_room_left = static_cast<std::int64_t>(size.most_additions);
    m_is_over = false;
}

StateNumber NumberedRound::explore() {
    bool const is_done = explore_shared();
    if (StateTree* const tree = m_states.tree()) {
        tree->end_sharing();
    }
    return is_done ? m_size.last - m_size.first : 0;
}

bool NumberedRound::explore_shared() {
    m_team.each(m_jobs.size(),
                [this](unsigned thread, std::size_t number) { find(m_workers[thread], number); });
    if (m_is_over) {
        take_back();
        return false;
    }
    for_jobs_of_each(&NumberedRound::keep_first);
    if (!make_room()) {
        take_back();
        return false;
    }
    for_jobs_of_each(&NumberedRound::give_numbers);
    if (m_rows.keeps()) {
        for_jobs_of_each(&NumberedRound::copy_rows);
    }
    StateNumber added = 0;
    for (Job const* const job : m_jobs) {
        added += static_cast<StateNumber>(job->additions.size());
    }
    m_additions.end(added);
    return true;
}

/// The first work. What it throws ends the round.
void NumberedRound::find(Worker& worker, std::size_t number) noexcept try {
    if (m_is_over.load(std::memory_order_relaxed)) {
        return;
    }
    SearchJob& search = worker.search;
    find_successors(search, m_search, m_tables, m_size, number);
    auto const steps = static_cast<std::int64_t>(search.steps().size());
    if (m_room_left.fetch_sub(steps, std::memory_order_relaxed) < steps) {
        m_is_over = true;
        return;
    }
    if (worker.job_count == worker.jobs.size()) {
        worker.jobs.emplace_back(m_rows.keeps());
    }
    Job& job = worker.jobs[worker.job_count++];
    job.number = number;
    job.additions.clear();
    m_jobs[number] = &job;
    look_up(worker, job);
    auto const added = static_cast<std::int64_t>(job.additions.size());
    m_room_left.fetch_add(steps - added, std::memory_order_relaxed);
} catch (...) {
    m_is_over = true;
}

void NumberedRound::look_up(Worker& worker, Job& job) {
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
                ? m_additions.meet(likely, JobAdditions::place(job.number, step))
                : m_additions.find_or_add(words, search.hash(step),
                                          JobAdditions::place(job.number, step), worker.adder);
        job.additions.note(step, found);
        return found.state;
    };
    std::size_t first = 0;
    for (std::size_t source = 0; source < search.source_count(); ++source) {
        job.rows.add_row(steps, first, search.row_end(source), target_of);
        first = search.row_end(source);
    }
}

void NumberedRound::for_jobs_of_each(void (NumberedRound::*work)(Job&) noexcept) {
    m_team.all([this, work](unsigned thread) {
        Worker& worker = m_workers[thread];
        for (std::size_t job = 0; job < worker.job_count; ++job) {
            (this->*work)(worker.jobs[job]);
        }
    });
}

/// The second work.
void NumberedRound::keep_first(Job& job) noexcept {
    job.additions.keep_first(m_additions, job.number);
}

/// For all that the round has found, job after job. False when there is no memory for it; nothing has
/// changed then.
bool NumberedRound::make_room() try {
    std::uint64_t steps = 0;
    std::uint64_t transitions = 0;
    StateNumber states = m_states.size();
    for (Job* const job : m_jobs) {
        job->first_number = states;
        job->room = {job->number * m_size.sources, transitions};
        states += static_cast<StateNumber>(job->additions.size());
        steps += job->steps;
        transitions += job->rows.transition_count();
    }
    m_additions.make_room_for_words(states);
    LtsBuilder::Room const room = m_rows.make_room(m_size.last - m_size.first, transitions);
    for (Job* const job : m_jobs) {
        job->room.first_row += room.first_row;
        job->room.first_transition += room.first_transition;
    }
    m_steps = steps;
    return true;
} catch (std::bad_alloc const&) {
    return false;
}

void NumberedRound::take_back() noexcept {
    for (Job const* const job : m_jobs) {
        if (job != nullptr) {
            job->additions.take_back(m_additions);
        }
    }
}

/// The third work.
void NumberedRound::give_numbers(Job& job) noexcept {
    job.additions.give_numbers(m_additions, job.first_number);
}

/// The fourth work.
void NumberedRound::copy_rows(Job& job) noexcept {
    m_rows.copy(job.rows, job.room,
                [this](StateNumber target) { return m_additions.number(target); });
}

} // namespace Calder::StateSpace
