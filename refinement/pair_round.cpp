#include "refinement/pair_round.h"

namespace Calder::Refinement {

using StateSpace::JobAdditions;
using StateSpace::no_state;
using StateSpace::SharedAdditions;

PairRound::PairRound(StateSpace::Team& team, Side& side, VisitedPairs& pairs, Answers& answers)
    : m_team(team), m_side(side), m_pairs(pairs), m_answers(answers), m_workers(team.size()) {}

std::uint64_t PairRound::growth_bytes(StateSpace::RoundSize const& size,
                                      StateSpace::Cut const& cut) const noexcept {
    constexpr std::uint64_t a_step = 40; // in a list of additions, and at most a source's row
    return m_pairs.growth_bytes(size.most_additions) +
           m_side.sharing_bytes(size.most_additions, m_pairs.size(), m_team.size()) +
           SharedAdditions::bytes_of(size.most_additions, m_pairs.width()) +
           (size.jobs() + 1) * cut.steps_of_job * a_step;
}

StateNumber PairRound::first_not_prepared(StateNumber first, StateNumber last) {
    PairBatch& batch = m_workers.front().batch;
    StateNumber pair = first;
    while (pair < last && m_side.is_prepared(batch.read(m_pairs, pair))) {
        ++pair;
    }
    return pair;
}

void PairRound::begin(StateSpace::RoundSize const& size) {
    m_size = size;
    m_job_count = size.jobs();
    m_asked_count = 0;
    while (m_jobs.size() < m_job_count) {
        m_jobs.emplace_back();
    }
    for (std::size_t number = 0; number < m_job_count; ++number) {
        m_jobs[number].additions.clear();
        m_jobs[number].is_put_off = false;
    }
    for (Worker& worker : m_workers) {
        worker.adder = {};
        worker.jobs.clear();
    }
    m_additions.begin(size.most_additions, m_team);
    m_side.begin_sharing(size.most_additions, m_pairs.size(), m_team);
    m_room_left = static_cast<std::int64_t>(size.most_additions);
    m_is_over = false;
}

bool PairRound::explore() {
    try {
        explore_jobs();
    } catch (...) {
        m_side.end_sharing();
        take_back();
        throw;
    }
    m_side.end_sharing();
    if (!m_is_over) {
        for_jobs_of_each(&PairRound::keep_first);
    }
    if (m_is_over || !make_room()) {
        take_back();
        return false;
    }
    for_jobs_of_each(&PairRound::give_numbers);
    StateNumber added = 0;
    for (std::size_t number = 0; number < m_job_count; ++number) {
        added += static_cast<StateNumber>(m_jobs[number].additions.size());
    }
    m_additions.end(added);
    return true;
}

/// The first work. Where less than half of the jobs that were tried again could be done, no more are.
void PairRound::explore_jobs() {
    m_team.each(m_job_count,
                [this](unsigned thread, std::size_t number) { find(m_workers[thread], number); });
    std::vector<std::size_t> left = put_off();
    for (bool helps = true; !left.empty() && !m_is_over;) {
        ask_for(left.front());
        left.erase(left.begin());
        if (helps && !m_is_over) {
            std::size_t const tried = left.size();
            m_team.each(tried, [this, &left](unsigned thread, std::size_t i) {
                find(m_workers[thread], left[i]);
            });
            left = put_off();
            helps = left.size() * 2 <= tried;
        }
    }
}

std::vector<std::size_t> PairRound::put_off() const {
    std::vector<std::size_t> numbers;
    for (std::size_t number = 0; number < m_job_count; ++number) {
        if (m_jobs[number].is_put_off) {
            numbers.push_back(number);
        }
    }
    return numbers;
}

/// By any thread. What it throws ends the round.
void PairRound::find(Worker& worker, std::size_t number) noexcept try {
    if (m_is_over.load(std::memory_order_relaxed)) {
        return;
    }
    m_jobs[number].is_put_off = !examine(worker, number, Knowing(m_answers));
    if (!m_jobs[number].is_put_off) {
        reach(worker, number);
    }
} catch (...) {
    m_is_over = true;
}

/// By the owner's, while all others wait.
void PairRound::ask_for(std::size_t number) {
    Worker& worker = m_workers.front();
    m_jobs[number].is_put_off = false;
    ++m_asked_count;
    m_side.end_sharing(); // an observer may be at the same side
    if (examine(worker, number, Asking(m_answers))) {
        reach(worker, number);
    } else {
        m_is_over = true;
    }
    m_side.go_on_sharing();
}

/// Finds the steps of the job's sources, and follows them. Whether all of them are known to be allowed, and to
/// lead to nodes that fit.
template <typename Judge>
bool PairRound::examine(Worker& worker, std::size_t number, Judge const& judge) {
    if (!m_pairs.fits(m_side.width(), 0)) { // an observer may make it wider
        return false;
    }
    StateNumber const first = m_size.first + static_cast<StateNumber>(number) * m_size.sources;
    StateNumber const last = std::min(first + m_size.sources, m_size.last);
    PairBatch& batch = worker.batch;
    batch.begin(first, m_pairs.state_width(), m_size.most_steps);
    for (StateNumber pair = first; pair < last; ++pair) {
        batch.read(m_pairs, pair);
        batch.add(m_side);
    }
    batch.begin_following(m_pairs);
    for (std::size_t source = 0; source < batch.source_count(); ++source) {
        if ((batch.is_among(source, m_looks_at) &&
             !judge.allows_offer(batch.node(source), batch.offer(source))) ||
            batch.follow_row(source, m_pairs, judge) < batch.row_end(source)) {
            return false;
        }
        batch.end_row(source);
    }
    return m_pairs.fits(m_side.width(), batch.most_node());
}

void PairRound::reach(Worker& worker, std::size_t number) {
    PairBatch& batch = worker.batch;
    SharedJob& job = m_jobs[number];
    std::span<std::uint64_t const> const hashes = batch.hashes();
    auto const steps = static_cast<std::int64_t>(hashes.size());
    job.additions.make_room(hashes.size());
    if (m_room_left.fetch_sub(steps, std::memory_order_relaxed) < steps) {
        m_is_over = true;
        return;
    }
    worker.jobs.push_back(number);
    worker.ahead.begin(m_additions, hashes);
    batch.reach(m_notes_loops, [&](std::size_t place, StateNumber) {
        StateNumber const likely = worker.ahead.likely_target(m_additions, hashes, place);
        Word const* const words = batch.words(place);
        SharedAdditions::Found const found =
            likely != no_state && m_additions.is_state(likely, words)
                ? m_additions.meet(likely, JobAdditions::place(number, place))
                : m_additions.find_or_add(words, hashes[place], JobAdditions::place(number, place),
                                          worker.adder);
        job.additions.note(place, found);
        return found.state;
    });
    batch.hand_over(job.found.rows, job.found.loop_heads);
    auto const added = static_cast<std::int64_t>(job.additions.size());
    m_room_left.fetch_add(steps - added, std::memory_order_relaxed);
}

/// As each of them has the additions of its jobs in its cache.
void PairRound::for_jobs_of_each(void (PairRound::*work)(std::size_t) noexcept) {
    m_team.all([this, work](unsigned thread) {
        for (std::size_t const number : m_workers[thread].jobs) {
            (this->*work)(number);
        }
    });
}

/// The second work.
void PairRound::keep_first(std::size_t number) noexcept {
    m_jobs[number].additions.keep_first(m_additions, number);
}

/// For all that the round has found, job after job. False when there is no memory for it; nothing has
/// changed then.
bool PairRound::make_room() try {
    StateNumber pairs = m_pairs.size();
    for (std::size_t number = 0; number < m_job_count; ++number) {
        m_jobs[number].first_number = pairs;
        pairs += static_cast<StateNumber>(m_jobs[number].additions.size());
    }
    m_additions.make_room_for_words(pairs);
    m_pairs.make_parents(pairs);
    return true;
} catch (std::bad_alloc const&) {
    return false;
}

void PairRound::take_back() noexcept {
    for (std::size_t number = 0; number < m_job_count; ++number) {
        m_jobs[number].additions.take_back(m_additions);
    }
}

/// The third work. An addition has the source of its step as its parent.
void PairRound::give_numbers(std::size_t number) noexcept {
    SharedJob const& job = m_jobs[number];
    job.additions.give_numbers(m_additions, job.first_number);
    StateNumber pair = job.first_number;
    StateNumber const first = m_size.first + static_cast<StateNumber>(number) * m_size.sources;
    std::size_t source = 0;
    for (JobAdditions::Addition const& addition : job.additions.all()) {
        while (job.found.rows[source].followed <= addition.step) {
            ++source;
        }
        m_pairs.set_parent(pair++, first + static_cast<StateNumber>(source));
    }
}

} // namespace Calder::Refinement
