#include "refinement/minimal_sets.h"
#include "refinement/next_nodes.h"
#include "refinement/offers.h"
#include "refinement/visited_pairs.h"

#include <gtest/gtest.h>

#include <map>

namespace Calder::Refinement {
namespace {

using StateSpace::no_state;

StateNumber add(VisitedPairs& pairs, std::vector<Word> const& state, NodeNumber node,
                StateNumber parent = 0) {
    if (!pairs.fits(static_cast<std::uint32_t>(state.size()), node)) {
        pairs.make_fit(static_cast<std::uint32_t>(state.size()), node);
    }
    std::vector<Word> pair(pairs.width());
    pairs.write(state.data(), node, pair.data());
    pairs.make_room(1);
    return pairs.find_or_add(pair.data(), pairs.hash(pair.data()), parent, no_state);
}

/// Nodes move into a word of their own when there are too many of them for the spare bits.
TEST(VisitedPairs, KeepNodesInSpareBitsWhileTheyFit) {
    for (unsigned const spare_bits : {0U, 1U, 3U, 32U, 60U}) {
        for (std::uint32_t const width : {1U, 3U}) {
            VisitedPairs pairs(width, spare_bits);
            Word const most = spare_bits == 0 ? ~Word{0} : (Word{1} << (64 - spare_bits)) - 1;
            std::map<StateNumber, std::pair<std::vector<Word>, NodeNumber>> known;
            for (NodeNumber node = 0; node < 40; ++node) {
                for (Word value = 0; value < 4; ++value) {
                    std::vector<Word> state(width, value * 77);
                    state.back() = most - value;
                    StateNumber const pair = add(pairs, state, node, node * 2);
                    EXPECT_EQ(pair, known.size());
                    EXPECT_EQ(add(pairs, state, node, 99), pair);
                    known[pair] = {state, node};
                }
                bool const fits = spare_bits >= 6 || node < (1U << spare_bits);
                EXPECT_EQ(pairs.width(), fits ? width : width + 1) << spare_bits << ' ' << node;
            }
            for (auto const& [pair, expected] : known) {
                std::vector<Word> state(width);
                pairs.read_state(pair, state.data());
                EXPECT_EQ(std::pair(state, pairs.node(pair)), expected);
                EXPECT_EQ(pairs.parent(pair), expected.second * 2);
            }
        }
    }
}

TEST(VisitedPairs, GrowWiderWithTheirStates) {
    for (NodeNumber const node : {0U, 5U}) {
        VisitedPairs pairs(1, 0);
        EXPECT_EQ(add(pairs, {7}, node), 0U);
        EXPECT_EQ(add(pairs, {7, 9}, 0, 0), 1U);
        EXPECT_EQ(add(pairs, {7, 0}, node), 0U);
        std::vector<Word> state(2);
        pairs.read_state(0, state.data());
        EXPECT_EQ(state, (std::vector<Word>{7, 0}));
        EXPECT_EQ(pairs.node(0), node);
    }
}

/// In rows, and where there is no room for rows.
TEST(NextNodes, AreFoundAgain) {
    NextNodes nodes;
    std::vector<unsigned> const events{2, 3, 7, 8, NextNodes::most_in_rows, 3'000'000};
    for (NodeNumber node = 0; node < 300; ++node) {
        for (unsigned const event : events) {
            EXPECT_EQ(nodes.find(node, event), not_known);
            nodes.insert(node, event, node * event);
        }
    }
    for (NodeNumber node = 0; node < 300; ++node) {
        for (unsigned const event : events) {
            EXPECT_EQ(nodes.find(node, event), node * event);
            EXPECT_EQ(nodes.find(node, event + 20), not_known);
        }
    }
}

TEST(MinimalSets, HaveNoMemberThatContainsAnother) {
    StateSpace::ExplorationOptions const unlimited;
    StateSpace::SearchMonitor monitor(unlimited, StateSpace::SearchMonitor::longest_for_machines);
    MinimalSets families;
    auto const add = [&](std::vector<Events> sets) {
        return families.add(std::move(sets), monitor);
    };
    auto const family = add({{3, 4}, {5}, {4, 5}, {3, 4}, {3, 6, 7}});
    EXPECT_EQ(families.sets(family), (std::vector<Events>{{3, 4}, {3, 6, 7}, {5}}));
    EXPECT_EQ(add({{5}, {3, 6, 7}, {4, 3 + 2}, {3, 4}}), family);
    EXPECT_NE(add({{5}}), family);
    EXPECT_EQ(families.sets(add({{3}, {}})), (std::vector<Events>{{}}));
    struct {
        Events set;
        bool has;
    } const rows[] = {
        {{5}, true}, {{3, 6}, false}, {{3, 4, 9}, true}, {{}, false}, {{4, 6, 7}, false}};
    for (auto const& row : rows) {
        EXPECT_EQ(families.has_subset_of(family, row.set), row.has);
    }
    EXPECT_FALSE(families.has_subset_of(add({}), Events{3}));
}

TEST(Offers, TickGoesBeforeEverything) {
    struct {
        Events events;
        std::optional<Events> accepted;
    } const rows[] = {
        {{}, Events{}},         {{3, 4}, Events{3, 4}}, {{2}, Events{2}},    {{2, 3}, Events{2}},
        {{1, 2, 3}, Events{2}}, {{1, 2}, Events{2}},    {{1}, std::nullopt}, {{1, 3}, std::nullopt},
    };
    for (auto const& row : rows) {
        auto const accepted = acceptance_of(row.events);
        ASSERT_EQ(accepted.has_value(), row.accepted.has_value());
        if (accepted) {
            EXPECT_EQ(Events(accepted->begin(), accepted->end()), *row.accepted);
        }
    }
}

} // namespace
} // namespace Calder::Refinement
