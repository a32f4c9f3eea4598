#include "refinement/observers.h"

#include "refinement/offers.h"

#include <algorithm>

namespace Calder::Refinement {

bool RefinementObserver::allows_offer(NodeNumber node, std::span<unsigned const> events) {
    auto const accepted = acceptance_of(events);
    return !accepted || m_normal_form.acceptance_sets().has_subset_of(
                            m_normal_form.acceptances(node), *accepted);
}

NodeNumber RefinementObserver::strict(NodeNumber node) {
    bool const is_beyond =
        m_model == Model::failures_divergences && is_node(node) && m_normal_form.diverges(node);
    return is_beyond ? nothing_matters : node;
}

bool DeterminismObserver::allows_offer(NodeNumber node, std::span<unsigned const> events) {
    auto const accepted = acceptance_of(events);
    if (!accepted || m_determinisation.diverges(node)) {
        return true;
    }
    std::vector<unsigned> const demanded = m_determinisation.acceptance(node);
    return std::includes(accepted->begin(), accepted->end(), demanded.begin(), demanded.end());
}

NodeNumber TraceObserver::after(NodeNumber node, unsigned event) {
    if (m_trace[node] != event) {
        return nothing_matters;
    }
    return node + 1 == m_trace.size() ? forbidden : node + 1;
}

} // namespace Calder::Refinement
