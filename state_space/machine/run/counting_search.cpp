#include "state_space/machine/run/counting_search.h"

#include "state_space/machine/run/visited_states.h"

namespace Calder::StateSpace {

CountingSearch::CountingSearch(RunOptions const& options, Cut const& /*cut*/)
    : m_max_states(options.max_states), m_workers(options.threads) {}

std::uint64_t CountingSearch::transition_count() const noexcept {
    std::uint64_t count = 0;
    for (Worker const& each : m_workers) {
        count += each.transitions;
    }
    return count;
}

bool CountingSearch::add_start(std::vector<Word> const& words) {
    m_set.make_room(1);
    m_level.make_room(1);
    if (m_set.find_or_add(VisitedStates::hash(words.data(), form.width), m_max_states) !=
        WordSet::Found::added) {
        return false;
    }
    m_level.add(words.front());
    return true;
}

void CountingSearch::begin_level(StateNumber first) {
    m_level.clear();
    for (Worker& each : m_workers) {
        m_level.take(each.found);
    }
    m_level_begin = first;
}

StateNumber CountingSearch::take_job() {
    Worker& owner = m_workers[0];
    m_set.make_room(owner.job.steps().size());
    return owner.look_up(
        m_set, [this](WordSet::Hash hash) { return m_set.find_or_add(hash, m_max_states); });
}

} // namespace Calder::StateSpace
