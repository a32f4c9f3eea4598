#include "state_space/exploration.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <set>

namespace Calder::StateSpace {
namespace {

using Testing::Graph;
using Testing::NodeTerm;
using Testing::Row;
using Testing::Rows;
using Testing::rows_of;

Exploration explore_graph(Graph const& graph) {
    Testing::NamedProcessSource const source;
    return explore(new NodeTerm(graph, 0), source);
}

TEST(Exploration, numbers_states_in_the_order_in_which_they_are_reached) {
    struct {
        char const* shape;
        Rows graph;
        Rows wanted;
    } const rows[] = {
        {"a single state", {{}}, {{}}},
        {"a loop", {{{3, 0}}}, {{{3, 0}}}},
        {"loops that differ", {{{3, 0}, {4, 0}, {3, 0}}}, {{{3, 0}, {4, 0}}}},
        {"a diamond",
         {{{3, 2}, {4, 1}}, {{3, 3}}, {{4, 3}}, {}},
         {{{3, 1}, {4, 2}}, {{4, 3}}, {{3, 3}}, {}}},
        {"a cycle", {{{3, 2}}, {{5, 0}}, {{4, 1}}}, {{{3, 1}}, {{4, 2}}, {{5, 0}}}},
        {"unreachable states", {{{1, 3}}, {{3, 0}}, {}, {{2, 0}}}, {{{1, 1}}, {{2, 0}}}},
        {"breadth before depth",
         {{{3, 1}, {3, 4}}, {{3, 2}}, {{3, 3}}, {}, {{3, 5}}, {}},
         {{{3, 1}, {3, 2}}, {{3, 3}}, {{3, 4}}, {{3, 5}}, {}, {}}},
    };
    for (auto const& row : rows) {
        for (bool const colliding : {false, true}) {
            Graph graph{row.graph};
            if (colliding) {
                graph.hash = [](unsigned) { return std::uint64_t{2}; };
            }
            Exploration const found = explore_graph(graph);
            EXPECT_EQ(found.outcome, Outcome::complete) << row.shape;
            EXPECT_EQ(rows_of(found.lts), row.wanted) << row.shape;
            EXPECT_EQ(found.lts.state_count(), row.wanted.size()) << row.shape;
        }
    }
}

/// The same by sets and maps and without any care for cost.
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
    Graph const graph{*rc::gen::container<Rows>(size, any_row)};
    Exploration const found = explore_graph(graph);
    RC_ASSERT(found.outcome == Outcome::complete);
    RC_ASSERT(rows_of(found.lts) == naive_exploration(graph));
    RC_ASSERT(found.lts.state_count() == found.lts.explored_count());
}

} // namespace
} // namespace Calder::StateSpace
