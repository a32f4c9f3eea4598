#include "refinement/observers.h"

#include "refinement/offers.h"

#include <algorithm>

namespace Calder::Refinement {

bool RefinementObserver::allows_offer(NodeNumber node, std::span<unsigned const> events) {
    auto const accepted = acceptance_of(events);
    return !accepted || m_normal_form.acceptance_sets().has_subset_of(
                            m_normal_form.acceptances(node), *accepted);
}

bool RefinementObserver::is_known_to_allow(NodeNumber node,
                                           std::span<unsigned const> events) const {
    auto const accepted = acceptance_of(events);
    if (!accepted) {
        return true;
    }
    auto const known = m_normal_form.known_acceptances(node);
    return known && m_normal_form.acceptance_sets().has_subset_of(*known, *accepted);
}

NodeNumber RefinementObserver::strict(NodeNumber node) {
    bool const is_beyond =
        m_model == Model::failures_divergences && is_node(node) && m_normal_form.diverges(node);
    return is_beyond ? nothing_matters : node;
}

bool DeterminismObserver::is_known_to_allow(NodeNumber node,
                                            std::span<unsigned const> events) const {
    auto const accepted = acceptance_of(events);
    if (!accepted || m_determinisation.diverges(node)) {
        return true;
    }
    std::vector<unsigned> const demanded = m_determinisation.acceptance(node);
    return std::includes(accepted->begin(), accepted->end(), demanded.begin(), demanded.end());
}

NodeNumber UniformityObserver::after(NodeNumber node, unsigned event) {
    auto const& least = m_normal_form.acceptance_sets().sets(m_normal_form.acceptances(node));
    bool const is_refused = std::any_of(least.begin(), least.end(), [event](Events const& set) {
        return !std::binary_search(set.begin(), set.end(), event);
    });
    return is_refused ? forbidden : counted(m_normal_form.after(node, event));
}

bool UniformityObserver::is_known_to_allow(NodeNumber node,
                                           std::span<unsigned const> events) const {
    auto const accepted = acceptance_of(events);
    return !accepted || std::includes(accepted->begin(), accepted->end(), m_events[node].begin(),
                                      m_events[node].end());
}

unsigned UniformityObserver::first_refused(NodeNumber node, std::span<unsigned const> accepted) {
    return *std::find_if(m_events[node].begin(), m_events[node].end(), [accepted](unsigned event) {
        return !std::binary_search(accepted.begin(), accepted.end(), event);
    });
}

/// Each step to a node looks at its members anew.
NodeNumber UniformityObserver::counted(NodeNumber node) {
    if (!is_node(node)) {
        return node;
    }
    std::uint64_t const members = m_normal_form.members(node).size();
    if (members > m_members_left) {
        throw StateSpace::SearchEnded();
    }
    m_members_left -= members;
    if (node == m_events.size()) {
        m_events.push_back(m_normal_form.events(node));
    }
    return node;
}

NodeNumber TraceObserver::after(NodeNumber node, unsigned event) {
    if (m_trace[node] != event) {
        return nothing_matters;
    }
    return node + 1 == m_trace.size() ? forbidden : node + 1;
}

NodeNumber RefusalObserver::after(NodeNumber node, unsigned event) {
    return node < m_trace.size() && m_trace[node] == event ? node + 1 : nothing_matters;
}

bool RefusalObserver::is_known_to_allow(NodeNumber node, std::span<unsigned const> events) const {
    auto const accepted = acceptance_of(events);
    return node < m_trace.size() || !accepted ||
           std::binary_search(accepted->begin(), accepted->end(), m_event);
}

} // namespace Calder::Refinement
