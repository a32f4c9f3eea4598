#include "state_space/machine/run/search_job.h"

#include "state_space/machine/run/visited_states.h"

namespace Calder::StateSpace {

void SearchJob::clear(std::uint32_t width, std::size_t most_steps) noexcept {
    m_width = width;
    m_steps.limit(most_steps);
    m_sources.clear();
    m_tables.clear();
    m_row_ends.clear();
}

void SearchJob::add_source(Word const* state, SuccessorTable const& table) {
    m_sources.insert(m_sources.end(), state, state + m_width);
    m_tables.push_back(&table);
}

void SearchJob::search() {
    m_steps.clear(m_width);
    for (std::size_t source = 0; source < m_tables.size(); ++source) {
        m_tables[source]->append_successors(&m_sources[source * m_width], m_steps, m_scratch);
        m_row_ends.push_back(m_steps.size());
    }
    hash_steps();
}

void SearchJob::widen(std::uint32_t width) {
    m_steps.widen(width);
    hash_steps();
}

void SearchJob::hash_steps() {
    m_hashes.resize(m_steps.size());
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        m_hashes[step] = VisitedStates::hash(m_steps.words(step), m_steps.width());
    }
}

} // namespace Calder::StateSpace
