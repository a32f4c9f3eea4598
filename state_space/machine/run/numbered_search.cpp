#include "state_space/machine/run/numbered_search.h"

#include "state_space/machine/run/shared_additions.h"

namespace Calder::StateSpace {

NumberedSearch::NumberedSearch(RunOptions const& options, Cut const& cut)
    : m_max_states(options.max_states), m_threads(options.threads),
      m_states(std::make_shared<ReachedStates>(cut.most_plain_words)),
      m_rows(options.keep_transitions) {}

StateNumber NumberedSearch::take_job() {
    Steps const& steps = m_job.steps();
    VisitedStates& states = m_states->kept();
    states.make_room(steps.size());
    m_ahead.begin(states, m_job.hashes());
    auto const target_of = [&](std::size_t step) { // no_state when it is one too many
        StateNumber const likely = m_ahead.likely_target(states, m_job.hashes(), step);
        Word const* const words = steps.words(step);
        return likely != no_state && states.is_state(likely, words)
                   ? likely
                   : states.find_or_add(words, m_job.hash(step), m_max_states);
    };
    std::size_t first = 0;
    for (std::size_t source = 0; source < m_job.source_count(); ++source) {
        if (!m_rows.add_row(steps, first, m_job.row_end(source), target_of)) {
            return static_cast<StateNumber>(source);
        }
        first = m_job.row_end(source);
    }
    return static_cast<StateNumber>(m_job.source_count());
}

std::uint64_t NumberedSearch::round_bytes(std::uint64_t steps,
                                          std::uint64_t additions) const noexcept {
    constexpr std::uint64_t a_step = 40; // in a list of additions and, twice over, as a transition
    return m_states->sharing_bytes(additions, m_threads) +
           SharedAdditions::bytes_of(additions, m_states->kept().width()) +
           m_rows.growth_bytes(steps) + steps * a_step;
}

void NumberedSearch::finish(Run& result) {
    result.lts = m_rows.finish(m_states->size());
    result.state_bytes = m_states->memory_bytes();
    result.states = std::move(m_states);
}

} // namespace Calder::StateSpace
