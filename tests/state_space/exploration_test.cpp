#include "state_space/exploration.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <set>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

/// By sets and maps and without any care for cost: breadth-first, by the first reports.
Rows naive_exploration(Graph const& graph) {
    std::map<unsigned, unsigned> numbers{{0, 0}};
    std::vector<unsigned> nodes{0};
    Rows rows;
    for (std::size_t state = 0; state < nodes.size(); ++state) {
        Row& row = rows.emplace_back();
        std::set<Row::value_type> seen;
        for (auto const& [event, node] : graph.rows[nodes[state]]) {
            auto const [entry, is_new] =
                numbers.emplace(node, static_cast<unsigned>(numbers.size()));
            if (is_new) {
                nodes.push_back(node);
            }
            if (seen.emplace(event, entry->second).second) {
                row.emplace_back(event, entry->second);
            }
        }
    }
    return rows;
}

RC_GTEST_PROP(ExplorationProperty, agrees_with_the_naive_one, ()) {
    auto const size = *rc::gen::inRange(1U, 40U);
    auto const any_row = rc::gen::container<Row>(
        rc::gen::pair(rc::gen::inRange(1U, 6U), rc::gen::inRange(0U, size)));
    Graph graph{*rc::gen::container<Rows>(size, any_row)};
    if (*rc::gen::arbitrary<bool>()) {
        graph.hash = [](unsigned) { return std::uint64_t{2}; };
    }
    Testing::NamedProcessSource const source;
    Exploration const found = explore(new NodeTerm(graph, 0), source);
    RC_ASSERT(found.outcome == Outcome::complete);
    RC_ASSERT(rows_of(found.lts) == naive_exploration(graph));
    RC_ASSERT(found.lts.state_count() == found.lts.explored_count());
}

} // namespace
} // namespace Calder::StateSpace
