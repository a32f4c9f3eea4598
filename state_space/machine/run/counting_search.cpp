#include "state_space/machine/run/counting_search.h"

#include "state_space/machine/run/visited_states.h"

#include <utility>

namespace Calder::StateSpace {

bool CountingSearch::add_start(std::vector<Word> const& words) {
    m_set.make_room(1);
    m_level.make_room(1);
    if (m_set.find_or_add(VisitedStates::hash(words.data(), form().width), m_max_states) !=
        WordSet::Found::added) {
        return false;
    }
    m_level.add(words.front());
    return true;
}

void CountingSearch::begin_level(StateNumber first) {
    m_level.clear();
    for (std::size_t worker = 0; worker < m_working; ++worker) {
        m_level.take(m_workers[worker].found);
    }
    m_working = 1;
    m_level_begin = first;
}

StateNumber CountingSearch::take_job() {
    Worker& owner = m_workers[0];
    m_set.make_room(owner.job.steps().size());
    StateNumber const done = owner.look_up(
        m_set, [this](WordSet::Hash hash) { return m_set.find_or_add(hash, m_max_states); });
    collect_transitions();
    return done;
}

void CountingSearch::collect_transitions() noexcept {
    for (std::size_t worker = 0; worker < m_working; ++worker) {
        m_transitions += std::exchange(m_workers[worker].transitions, 0);
    }
}

} // namespace Calder::StateSpace
