#include "refinement/numbered_states.h"

#include "state_space/memory.h"

#include <algorithm>
#include <tuple>

namespace Calder::Refinement {

using StateSpace::no_state;

namespace {

bool is_before(Transition const& left, Transition const& right) {
    return std::tie(left.event, left.target) < std::tie(right.event, right.target);
}

} // namespace

NumberedStates::NumberedStates(Side& side, SearchMonitor& monitor)
    : m_side(side), m_monitor(monitor), m_states(side.width()) {
    add(side.start().data());
}

std::vector<Word> NumberedStates::words(StateNumber state) const {
    Word const* const known = m_states.words(state);
    std::vector<Word> words(known, known + m_states.width());
    words.resize(m_side.width());
    return words;
}

std::span<Transition const> NumberedStates::row(StateNumber state) {
    if (m_rows[state].length == unknown) {
        explore(state);
    }
    return known_row(state);
}

std::span<Transition const> NumberedStates::with_event(std::span<Transition const> row,
                                                       unsigned event) noexcept {
    auto const first = std::lower_bound(
        row.begin(), row.end(), event,
        [](Transition const& transition, unsigned wanted) { return transition.event < wanted; });
    auto last = first;
    while (last != row.end() && last->event == event) {
        ++last;
    }
    return {first, last};
}

void NumberedStates::explore(StateNumber state) {
    m_words.assign(m_states.words(state), m_states.words(state) + m_states.width());
    m_side.prepare(m_words.data());
    if (m_side.width() != m_states.width()) {
        m_states.widen(m_side.width());
        m_words.resize(m_side.width());
    }
    m_steps.clear(m_side.width());
    m_side.append_steps(m_words.data(), m_steps, m_scratch);
    std::uint64_t const begin = m_transitions.size();
    for (std::size_t step = 0; step < m_steps.size(); ++step) {
        m_transitions.push_back({m_steps.event(step), add(m_steps.words(step))});
    }
    auto const first = m_transitions.begin() + static_cast<std::ptrdiff_t>(begin);
    std::sort(first, m_transitions.end(), is_before);
    m_transitions.erase(std::unique(first, m_transitions.end()), m_transitions.end());
    m_rows[state] = {begin, static_cast<std::uint32_t>(m_transitions.size() - begin)};
    std::uint64_t const ahead = m_monitor.work_ahead() + m_steps.size();
    m_monitor.go_on(m_steps.size() + 1, m_states.growth_bytes(ahead) + m_side.growth_bytes(ahead) +
                                            StateSpace::growth_bytes(m_transitions, ahead) +
                                            StateSpace::growth_bytes(m_rows, ahead));
}

StateNumber NumberedStates::add(Word const* words) {
    m_states.make_room(1);
    StateNumber const state = m_states.find_or_add(
        words, StateSpace::VisitedStates::hash(words, m_states.width()), m_monitor.max_states());
    if (state == no_state) {
        m_monitor.stop(StateSpace::Outcome::state_limit);
        throw StateSpace::SearchEnded();
    }
    if (state == m_rows.size()) {
        m_rows.emplace_back();
    }
    return state;
}

} // namespace Calder::Refinement
