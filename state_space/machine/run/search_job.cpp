#include "state_space/machine/run/search_job.h"

#include "state_space/machine/run/visited_states.h"

namespace Calder::StateSpace {

void SearchJob::clear(Form form, std::size_t most_steps) noexcept {
    m_form = form;
    m_steps.limit(most_steps);
    m_sources.clear();
    m_tables.clear();
    m_row_ends.clear();
}

void SearchJob::add_source(Word const* kept, SuccessorTable const& table) {
    m_sources.push_back(kept);
    m_tables.push_back(&table);
}

void SearchJob::search() {
    m_steps.clear(m_form.kept_width());
    if (m_form.tree == nullptr) {
        append_successors();
    } else {
        append_roots();
    }
    hash_steps();
}

void SearchJob::append_successors() {
    for (std::size_t source = 0; source < m_sources.size(); ++source) {
        m_tables[source]->append_successors(m_sources[source], m_steps, m_scratch);
        m_row_ends.push_back(m_steps.size());
    }
}

void SearchJob::append_roots() {
    StateTree& tree = *m_form.tree;
    tree.begin(m_work);
    for (std::size_t source = 0; source < m_sources.size(); ++source) {
        Word const* const words =
            tree.begin_source(m_sources[source], m_form.width, m_steps, m_work);
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
