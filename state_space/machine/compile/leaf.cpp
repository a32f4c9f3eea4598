#include "state_space/machine/compile/leaf.h"

#include <algorithm>

namespace Calder::StateSpace {

Leaf::Leaf(ProcessCompiler::ProcessPointer explored, LabelledTransitionSystem const& system)
    : m_term(std::move(explored)), m_state_count(system.state_count()) {
    sort_rows(system);
    describe_events();
    make_dense_tables();
}

BitSet Leaf::alphabet() const {
    BitSet all;
    for (Event const& event : m_events) {
        all.insert(event.event);
    }
    return all;
}

std::uint32_t Leaf::index_of(unsigned event) const noexcept {
    auto const found =
        std::lower_bound(m_events.begin(), m_events.end(), event,
                         [](Event const& known, unsigned wanted) { return known.event < wanted; });
    return static_cast<std::uint32_t>(found - m_events.begin());
}

std::span<StateNumber const> Leaf::successors(StateNumber state,
                                              std::uint32_t event_index) const noexcept {
    if (m_events[event_index].only_successor != nullptr) {
        StateNumber const& only = m_events[event_index].only_successor[state];
        return {&only, only == no_state ? std::size_t{0} : std::size_t{1}};
    }
    auto const row = m_event_indices.begin() + static_cast<std::ptrdiff_t>(m_row_begins[state]);
    auto const row_end =
        m_event_indices.begin() + static_cast<std::ptrdiff_t>(m_row_begins[state + 1]);
    auto const [first, last] = std::equal_range(row, row_end, event_index);
    return std::span(m_successors)
        .subspan(static_cast<std::size_t>(first - m_event_indices.begin()),
                 static_cast<std::size_t>(last - first));
}

void Leaf::sort_rows(LabelledTransitionSystem const& system) {
    BitSet alphabet;
    for (StateNumber state = 0; state < system.explored_count(); ++state) {
        for (Transition const& transition : system.transitions(state)) {
            alphabet.insert(transition.event);
        }
    }
    for (unsigned const event : alphabet) {
        m_events.push_back(Event{event});
    }
    m_successors.reserve(system.transition_count());
    m_event_indices.reserve(system.transition_count());
    m_row_begins.assign(1, 0);
    std::vector<Transition> row;
    for (StateNumber state = 0; state < m_state_count; ++state) {
        auto const transitions = system.transitions(state);
        row.assign(transitions.begin(), transitions.end());
        std::stable_sort(row.begin(), row.end(), [](Transition left, Transition right) {
            return left.event < right.event;
        });
        for (Transition const& transition : row) {
            m_successors.push_back(transition.target);
            m_event_indices.push_back(index_of(transition.event));
        }
        m_row_begins.push_back(m_successors.size());
    }
}

void Leaf::describe_events() {
    for (StateNumber state = 0; state < m_state_count; ++state) {
        for (std::uint64_t i = m_row_begins[state]; i < m_row_begins[state + 1]; ++i) {
            Event& event = m_events[m_event_indices[i]];
            event.has_loop = event.has_loop || m_successors[i] == state;
            if (i > m_row_begins[state] && m_event_indices[i] == m_event_indices[i - 1]) {
                event.is_deterministic = false;
            }
        }
    }
}

void Leaf::make_dense_tables() {
    if (std::uint64_t{m_state_count} * m_events.size() > most_dense_entries) {
        return;
    }
    m_only_successors.assign(std::size_t{m_state_count} * m_events.size(), no_state);
    for (StateNumber state = 0; state < m_state_count; ++state) {
        for (std::uint64_t i = m_row_begins[state]; i < m_row_begins[state + 1]; ++i) {
            m_only_successors[std::size_t{m_event_indices[i]} * m_state_count + state] =
                m_successors[i];
        }
    }
    for (std::size_t index = 0; index < m_events.size(); ++index) {
        if (m_events[index].is_deterministic) {
            m_events[index].only_successor = &m_only_successors[index * m_state_count];
        }
    }
}

} // namespace Calder::StateSpace
