#include "refinement/normal_form.h"

#include "process_compiler/event_numbers.h"
#include "refinement/offers.h"
#include "state_space/memory.h"
#include "state_space/mix.h"

#include <algorithm>

namespace Calder::Refinement {

using ProcessCompiler::tau;
using ProcessCompiler::tick;

NormalForm::NormalForm(Side& side, SearchMonitor& monitor)
    : m_states(side, monitor), m_monitor(monitor) {}

NodeNumber NormalForm::start() {
    return node_of({NumberedStates::start});
}

NodeNumber NormalForm::after(NodeNumber node, unsigned event) {
    Members reached;
    for (StateNumber const member : members(node)) {
        for (auto const& step : NumberedStates::with_event(m_states.row(member), event)) {
            reached.push_back(step.target);
        }
    }
    m_monitor.go_on(members(node).size());
    if (reached.empty()) {
        return forbidden;
    }
    return event == tick ? nothing_matters : node_of(std::move(reached));
}

bool NormalForm::diverges(NodeNumber node) {
    return m_divergence.is_in(members(node));
}

MinimalSets::Family NormalForm::acceptances(NodeNumber node) {
    m_acceptances.resize(m_nodes.size(), unknown);
    if (m_acceptances[node] == unknown) {
        std::vector<Events> sets;
        for (StateNumber const member : members(node)) {
            Events events;
            for (Transition const& step : m_states.row(member)) {
                if (events.empty() || events.back() != step.event) {
                    events.push_back(step.event);
                }
            }
            if (auto const accepted = acceptance_of(events)) {
                sets.emplace_back(accepted->begin(), accepted->end());
            }
        }
        m_monitor.go_on(members(node).size());
        m_acceptances[node] = m_sets.add(std::move(sets), m_monitor);
    }
    return m_acceptances[node];
}

Events NormalForm::events(NodeNumber node) {
    Events events;
    for (StateNumber const member : members(node)) {
        for (Transition const& step : m_states.row(member)) {
            if (step.event != tau) {
                events.push_back(step.event);
            }
        }
    }
    std::sort(events.begin(), events.end());
    events.erase(std::unique(events.begin(), events.end()), events.end());
    return events;
}

std::size_t NormalForm::HashMembers::operator()(Members const& members) const noexcept {
    std::uint64_t hash = members.size();
    for (StateNumber const member : members) {
        hash = StateSpace::mix(hash ^ member);
    }
    return hash;
}

NodeNumber NormalForm::node_of(Members reached) {
    close(reached);
    std::uint64_t const size = reached.size() * sizeof(StateNumber);
    auto const [place, is_new] =
        m_numbers.try_emplace(std::move(reached), static_cast<NodeNumber>(m_nodes.size()));
    if (is_new) {
        m_nodes.push_back({&*place});
    }
    m_monitor.go_on(place->first.size(), size + StateSpace::growth_bytes(m_nodes, 1));
    return place->second;
}

/// Adds what silent steps lead to, and sorts.
void NormalForm::close(Members& members) {
    if (++m_stamp == 0) { // after 2^32 closures old stamps would look present
        std::fill(m_stamps.begin(), m_stamps.end(), 0);
        m_stamp = 1;
    }
    auto const is_first_visit = [this](StateNumber state) {
        m_stamps.resize(std::max<std::size_t>(m_stamps.size(), m_states.size()), 0);
        return std::exchange(m_stamps[state], m_stamp) != m_stamp;
    };
    std::erase_if(members, [&](StateNumber state) { return !is_first_visit(state); });
    for (std::size_t next = 0; next < members.size(); ++next) {
        for (auto const& step : NumberedStates::with_event(m_states.row(members[next]), tau)) {
            if (is_first_visit(step.target)) {
                members.push_back(step.target);
            }
        }
    }
    std::sort(members.begin(), members.end());
}

} // namespace Calder::Refinement
