#include "refinement/loops.h"

#include "core/cycle_search.h"
#include "process_compiler/event_numbers.h"
#include "state_space/memory.h"

#include <algorithm>

namespace Calder::Refinement {

using StateSpace::no_state;

namespace {

/// The silent steps among the explored pairs that some are found to lead to. Its vertices are
/// numbered in the order in which they are reached.
class SilentGraph {
  public:
    SilentGraph(PairSearch& search, SearchMonitor& monitor) : m_search(search), m_monitor(monitor) {
        monitor.go_on(search.explored_count(),
                      std::uint64_t{search.explored_count()} * sizeof(std::uint32_t));
        m_vertices.resize(search.explored_count(), no_state);
    }

    void reach_from(std::vector<StateNumber> const& heads) {
        for (StateNumber const head : heads) {
            vertex(head);
        }
        for (std::uint32_t next = 0; next < m_pairs.size(); ++next) {
            explore(m_pairs[next]);
            m_monitor.go_on(m_found.steps.size() + 1,
                            StateSpace::growth_bytes(m_pairs, 1) * 2 +
                                StateSpace::growth_bytes(m_targets, m_found.steps.size()));
        }
    }

    std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(m_pairs.size()); }
    StateNumber pair(std::uint32_t vertex) const noexcept { return m_pairs[vertex]; }
    std::uint32_t vertex_of(StateNumber pair) const noexcept { return m_vertices[pair]; }
    std::span<std::uint32_t const> successors(std::uint32_t vertex) const noexcept {
        std::uint64_t const begin = vertex == 0 ? 0 : m_row_ends[vertex - 1];
        return std::span(m_targets).subspan(begin, m_row_ends[vertex] - begin);
    }

  private:
    std::uint32_t vertex(StateNumber pair) {
        if (m_vertices[pair] == no_state) {
            m_vertices[pair] = size();
            m_pairs.push_back(pair);
        }
        return m_vertices[pair];
    }

    void explore(StateNumber pair) {
        m_search.find_steps(pair, m_found);
        for (std::size_t step = 0; step < m_found.steps.size(); ++step) {
            if (m_found.steps.event(step) != ProcessCompiler::tau) {
                continue;
            }
            StateNumber const target = m_search.target_of(m_found, step);
            if (target < m_vertices.size()) {
                m_targets.push_back(vertex(target));
            }
        }
        m_row_ends.push_back(m_targets.size());
    }

    PairSearch& m_search;
    SearchMonitor& m_monitor;
    PairSteps m_found;
    std::vector<std::uint32_t> m_vertices; // by pair
    std::vector<StateNumber> m_pairs;      // by vertex
    std::vector<std::uint32_t> m_targets;  // vertex after vertex
    std::vector<std::uint64_t> m_row_ends; // by vertex
};

/// What the search for cycles may take for a vertex: its numbers, its place on the path and among
/// what is open.
constexpr std::uint64_t cycle_search_bytes = 6 * sizeof(std::uint32_t);

/// The lowest pair on a loop; no_state where there is none.
StateNumber lowest_on_loop(SilentGraph const& graph, SearchMonitor& monitor) {
    StateNumber lowest = no_state;
    monitor.go_on(graph.size(), graph.size() * cycle_search_bytes);
    for_each_cycle(
        graph.size(),
        [&](std::uint32_t vertex) {
            monitor.go_on(1);
            return graph.successors(vertex);
        },
        [&](std::span<std::uint32_t const> cycle) {
            auto const successors = graph.successors(cycle.front());
            bool const leads_round =
                cycle.size() > 1 ||
                std::find(successors.begin(), successors.end(), cycle.front()) != successors.end();
            for (std::uint32_t const vertex : cycle) {
                lowest = leads_round ? std::min(lowest, graph.pair(vertex)) : lowest;
            }
        });
    return lowest;
}

/// Breadth-first from the start back to it.
std::vector<StateNumber> shortest_loop(SilentGraph const& graph, std::uint32_t start,
                                       SearchMonitor& monitor) {
    monitor.go_on(graph.size(), graph.size() * std::uint64_t{sizeof(std::uint32_t)});
    std::vector<std::uint32_t> parents(graph.size(), no_state);
    std::vector<std::uint32_t> reached{start};
    for (std::size_t next = 0; next < reached.size(); ++next) {
        auto const successors = graph.successors(reached[next]);
        monitor.go_on(successors.size() + 1, StateSpace::growth_bytes(reached, successors.size()));
        for (std::uint32_t const target : successors) {
            if (target == start) {
                std::vector<StateNumber> loop;
                for (std::uint32_t v = reached[next]; v != start; v = parents[v]) {
                    loop.push_back(graph.pair(v));
                }
                loop.push_back(graph.pair(start));
                std::reverse(loop.begin(), loop.end());
                return loop;
            }
            if (parents[target] == no_state) {
                parents[target] = reached[next];
                reached.push_back(target);
            }
        }
    }
    return {};
}

} // namespace

std::vector<StateNumber> first_loop(PairSearch& search, std::vector<StateNumber> const& heads,
                                    SearchMonitor& monitor) {
    SilentGraph graph(search, monitor);
    graph.reach_from(heads);
    StateNumber const lowest = lowest_on_loop(graph, monitor);
    return lowest == no_state ? std::vector<StateNumber>()
                              : shortest_loop(graph, graph.vertex_of(lowest), monitor);
}

} // namespace Calder::Refinement
