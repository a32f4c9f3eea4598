#include "state_space/machine/run/unordered_round.h"

#include "state_space/machine/run/round_job.h"

namespace Calder::StateSpace {

UnorderedRound::UnorderedRound(Team& team, NumberedSearch& search,
                               ConfigurationTables const& tables)
    : m_team(team), m_search(search), m_states(*search.m_states), m_tables(tables),
      m_rows(search.m_rows), m_additions(m_states.kept(), team.size()), m_workers(team.size()) {}

void UnorderedRound::begin(RoundSize const& size) {
    m_size = size;
    m_steps = 0;
    for (Worker& worker : m_workers) {
        worker.rows.clear();
        worker.steps = 0;
    }
    m_additions.begin(size.most_additions, m_team);
    if (StateTree* const tree = m_states.tree()) {
        tree->begin_sharing(size.most_additions, m_states.size(), m_team);
    }
    m_room_left = static_cast<std::int64_t>(size.most_additions);
    m_is_over = false;
}

StateNumber UnorderedRound::explore() {
    m_team.each(m_size.jobs(),
                [this](unsigned thread, std::size_t number) { explore_job(thread, number); });
    if (StateTree* const tree = m_states.tree()) {
        tree->end_sharing();
    }
    if (m_is_over) {
        m_additions.take_back();
        return 0;
    }
    m_additions.end();
    std::uint64_t transitions = 0;
    for (Worker const& worker : m_workers) {
        transitions += worker.rows.transition_count();
        m_steps += worker.steps;
    }
    m_rows.make_room(0, transitions); // they are only counted
    return m_size.last - m_size.first;
}

/// What it throws ends the round.
void UnorderedRound::explore_job(unsigned thread, std::size_t number) noexcept try {
    if (m_is_over.load(std::memory_order_relaxed)) {
        return;
    }
    Worker& worker = m_workers[thread];
    SearchJob& search = worker.search;
    find_successors(search, m_search, m_tables, m_size, number);
    auto const steps = static_cast<std::int64_t>(search.steps().size());
    if (m_room_left.fetch_sub(steps, std::memory_order_relaxed) < steps) {
        m_is_over = true;
        return;
    }
    std::size_t const added = look_up(worker, thread);
    m_room_left.fetch_add(steps - static_cast<std::int64_t>(added), std::memory_order_relaxed);
    worker.steps += search.steps().size();
} catch (...) {
    m_is_over = true;
}

/// How many of the successors are added.
std::size_t UnorderedRound::look_up(Worker& worker, unsigned thread) {
    SearchJob const& search = worker.search;
    Steps const& steps = search.steps();
    std::size_t added = 0;
    worker.ahead.begin(m_additions, search.hashes());
    auto const target_of = [&](std::size_t step) {
        StateNumber const likely = worker.ahead.likely_target(m_additions, search.hashes(), step);
        Word const* const words = steps.words(step);
        if (likely != no_state && m_additions.is_state(likely, words)) {
            return likely;
        }
        auto const [state, is_new] = m_additions.find_or_add(words, search.hash(step), thread);
        added += is_new ? 1 : 0;
        return state;
    };
    std::size_t first = 0;
    for (std::size_t source = 0; source < search.source_count(); ++source) {
        worker.rows.add_row(steps, first, search.row_end(source), target_of);
        first = search.row_end(source);
    }
    return added;
}

} // namespace Calder::StateSpace
