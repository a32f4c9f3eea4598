#include "refinement/determinisation.h"

#include "process_compiler/event_numbers.h"
#include "refinement/offers.h"

#include <algorithm>

namespace Calder::Refinement {

using ProcessCompiler::no_event;
using ProcessCompiler::tau;
using ProcessCompiler::tick;
using StateSpace::no_state;

NodeNumber Determinisation::after(NodeNumber node, unsigned event) {
    if (diverges(node)) {
        return event == tick ? nothing_matters : node;
    }
    auto const row = m_states.row(m_nodes[node].state);
    auto const steps = NumberedStates::with_event(row, event);
    if (steps.empty() || (event != tick && NumberedStates::can(row, tick))) {
        return forbidden;
    }
    return event == tick ? nothing_matters : settled(steps.front().target);
}

/// Whether a state settles was seen in its row.
std::vector<unsigned> Determinisation::acceptance(NodeNumber node) const {
    std::vector<unsigned> events;
    for (Transition const& step : m_states.known_row(m_nodes[node].state)) {
        if (events.empty() || events.back() != step.event) {
            events.push_back(step.event);
        }
    }
    auto const accepted = acceptance_of(events); // it settles here, so there is one
    return {accepted->begin(), accepted->end()};
}

std::vector<Determinisation::Step> Determinisation::run_of(std::span<unsigned const> trace,
                                                           unsigned last) {
    std::vector<Step> steps;
    StateNumber state = NumberedStates::start;
    auto const take = [&](unsigned event, StateNumber target) {
        steps.push_back({state, event, target});
        state = target;
    };
    auto const settle = [&] {
        for (StateNumber next = silent_step(state); next != no_state; next = silent_step(state)) {
            take(tau, next);
        }
    };
    auto const perform = [&](unsigned event) {
        take(event, NumberedStates::with_event(m_states.row(state), event).front().target);
    };
    settle();
    for (unsigned const event : trace) {
        perform(event);
        settle();
    }
    if (last != no_event) {
        perform(last);
    }
    return steps;
}

/// The node in which one settles from the state, or comes round. Each state is passed once.
NodeNumber Determinisation::settled(StateNumber state) {
    std::vector<StateNumber> passed;
    NodeNumber node = unknown;
    while (node == unknown) {
        StateNumber const next = silent_step(state);
        m_numbers.resize(std::max<std::size_t>(m_numbers.size(), m_states.size()), unknown);
        if (m_numbers[state] == on_the_way) {
            node = add_node(state, true);
        } else if (m_numbers[state] != unknown) {
            node = m_numbers[state];
        } else if (next == no_state) {
            node = add_node(state, false);
        } else {
            m_numbers[state] = on_the_way;
            passed.push_back(state);
            state = next;
        }
    }
    for (StateNumber const before : passed) {
        m_numbers[before] = node;
    }
    return node;
}

NodeNumber Determinisation::add_node(StateNumber state, bool diverges) {
    m_nodes.push_back({state, diverges});
    m_numbers[state] = static_cast<NodeNumber>(m_nodes.size() - 1);
    return m_numbers[state];
}

/// The first one; no_state where the state settles.
StateNumber Determinisation::silent_step(StateNumber state) {
    auto const row = m_states.row(state);
    auto const silent = NumberedStates::with_event(row, tau);
    return silent.empty() ? no_state : silent.front().target;
}

} // namespace Calder::Refinement
