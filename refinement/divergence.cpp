#include "refinement/divergence.h"

#include "core/cycle_search.h"
#include "process_compiler/event_numbers.h"
#include "state_space/memory.h"

#include <algorithm>

namespace Calder::Refinement {

bool Divergence::is_in(std::span<StateNumber const> closed) {
    m_marks.resize(std::max<std::size_t>(m_marks.size(), m_states.size()), Mark::unknown);
    std::vector<StateNumber> unknown;
    for (StateNumber const state : closed) {
        if (m_marks[state] == Mark::unknown) {
            unknown.push_back(state);
        }
    }
    decide(unknown);
    return std::any_of(closed.begin(), closed.end(),
                       [this](StateNumber state) { return m_marks[state] == Mark::on_loop; });
}

/// What these lead to is among them or known already.
void Divergence::decide(std::vector<StateNumber> const& unknown) {
    m_monitor.go_on(unknown.size(), unknown.size() * 64);
    std::vector<std::vector<std::uint32_t>> successors(unknown.size());
    for (std::size_t vertex = 0; vertex < unknown.size(); ++vertex) {
        auto const row = m_states.row(unknown[vertex]);
        for (auto const& step : NumberedStates::with_event(row, ProcessCompiler::tau)) {
            auto const place = std::lower_bound(unknown.begin(), unknown.end(), step.target);
            if (place != unknown.end() && *place == step.target) {
                successors[vertex].push_back(static_cast<std::uint32_t>(place - unknown.begin()));
            }
        }
        m_monitor.go_on(successors[vertex].size() + 1);
    }
    auto const successors_of = [&](std::uint32_t vertex) -> std::vector<std::uint32_t> const& {
        m_monitor.go_on(1);
        return successors[vertex];
    };
    for_each_cycle(static_cast<std::uint32_t>(unknown.size()), successors_of,
                   [&](std::span<std::uint32_t const> cycle) {
                       auto const& next = successors_of(cycle.front());
                       bool const leads_round =
                           cycle.size() > 1 ||
                           std::find(next.begin(), next.end(), cycle.front()) != next.end();
                       for (std::uint32_t const vertex : cycle) {
                           m_marks[unknown[vertex]] = leads_round ? Mark::on_loop : Mark::on_none;
                       }
                   });
}

} // namespace Calder::Refinement
