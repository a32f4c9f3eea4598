#include "state_space/machine/run/search_job.h"

namespace Calder::StateSpace {

void SearchJob::clear(ReachedStates& states, std::size_t most_steps) noexcept {
    m_states = &states;
    m_steps.limit(most_steps);
    m_sources.clear();
    m_tables.clear();
    m_row_ends.clear();
}

void SearchJob::add_source(StateNumber state, SuccessorTable const& table) {
    m_sources.push_back(state);
    m_tables.push_back(&table);
}

void SearchJob::search() {
    m_steps.clear(m_states->kept().width());
    if (m_states->tree() == nullptr) {
        append_successors();
    } else {
        append_roots();
    }
    hash_steps();
}

void SearchJob::append_successors() {
    for (std::size_t source = 0; source < m_sources.size(); ++source) {
        m_tables[source]->append_successors(m_states->kept().words(m_sources[source]), m_steps,
                                            m_scratch);
        m_row_ends.push_back(m_steps.size());
    }
}

void SearchJob::append_roots() {
    StateTree& tree = *m_states->tree();
    tree.begin(m_work);
    for (std::size_t source = 0; source < m_sources.size(); ++source) {
        Word const* const words = tree.begin_source(m_states->kept().words(m_sources[source]),
                                                    m_states->width(), m_steps, m_work);
        m_tables[source]->append_successors(words, m_work.changes, m_scratch);
        m_row_ends.push_back(m_steps.size());
        if (tree.is_full(m_work)) {
            tree.join(m_steps, m_work);
            tree.begin(m_work);
        }
    }
    tree.join(m_steps, m_work);
}

void SearchJob::hash_steps() {
    m_hashes.resize(m_steps.size());
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        m_hashes[step] = VisitedStates::hash(m_steps.words(step), m_steps.width());
    }
}

} // namespace Calder::StateSpace
