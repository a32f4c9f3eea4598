#include "state_space/state_table.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

constexpr unsigned many = 2000; // the table grows several times

TEST(StateTable, numbers_terms_by_equality_whatever_their_hashes) {
    struct {
        char const* hashes;
        std::uint64_t (*hash)(unsigned node);
    } const rows[] = {
        {"spread", Testing::usual_hash},
        {"all the same", [](unsigned) { return std::uint64_t{8}; }},
        {"few", [](unsigned node) { return std::uint64_t{node % 50} * 2; }},
        {"small and even", [](unsigned node) { return std::uint64_t{node} * 2; }},
        {"only the top bits differ", [](unsigned node) { return std::uint64_t{node} << 50; }},
    };
    for (auto const& row : rows) {
        Graph const graph{{}, row.hash};
        StateTable table;
        for (unsigned round = 0; round < 2; ++round) {
            for (unsigned node = 0; node < many; ++node) {
                ProcessPointer const term(new NodeTerm(graph, node));
                ASSERT_EQ(table.find_or_add(term), node) << row.hashes;
                ASSERT_EQ(table.term(node) == term, round == 0) << "not what came first";
                ASSERT_EQ(table.find_or_add(table.term(node)), node) << row.hashes;
            }
            EXPECT_EQ(table.size(), many);
        }
    }
}

TEST(StateTable, takes_no_more_than_the_bound_and_still_finds) {
    Graph const graph;
    StateTable table;
    for (unsigned node = 0; node < many; ++node) {
        table.find_or_add(new NodeTerm(graph, node));
        EXPECT_EQ(table.find_or_add(new NodeTerm(graph, many), node + 1), no_state);
        EXPECT_EQ(table.find_or_add(new NodeTerm(graph, node / 2), node + 1), node / 2);
    }
    EXPECT_EQ(table.size(), many);
    EXPECT_EQ(StateTable().find_or_add(new NodeTerm(graph, 0), 0), no_state);
}

TEST(StateTable, finds_many_at_once_whatever_was_added_meanwhile) {
    struct {
        char const* hashes;
        std::uint64_t (*hash)(unsigned node);
    } const rows[] = {
        {"spread", Testing::usual_hash},
        {"all the same", [](unsigned) { return std::uint64_t{8}; }},
        {"few", [](unsigned node) { return std::uint64_t{node % 7} * 2; }},
    };
    for (auto const& row : rows) {
        Graph const graph{{}, row.hash};
        StateTable table;
        for (unsigned batch = 0; batch < 40; ++batch) {
            // Each batch is as large as all before, at first, and has each node twice.
            std::vector<ProcessPointer> terms;
            std::vector<StateTable::Sought> sought;
            for (unsigned i = 0; i < 60; ++i) {
                terms.emplace_back(new NodeTerm(graph, batch * 15 + i % 30));
                sought.push_back(table.seek(hash_of(terms.back())));
            }
            for (std::size_t i = 0; i < terms.size(); ++i) {
                table.find_candidate(sought[i]);
                table.prefetch_term(sought[i].candidate);
                table.find_argument(sought[i], *terms[i]);
            }
            for (std::size_t i = 0; i < terms.size(); ++i) {
                unsigned const node = batch * 15 + static_cast<unsigned>(i) % 30;
                if (node >= table.size()) {
                    ASSERT_EQ(table.find_or_add(terms[i], sought[i], node), no_state);
                }
                ASSERT_EQ(table.find_or_add(terms[i], sought[i], no_state), node) << row.hashes;
            }
        }
    }
}

TEST(StateTable, says_before_it_grows_by_how_much) {
    Graph const graph;
    StateTable table;
    for (unsigned node = 0; node < many; ++node) {
        std::uint64_t const before = table.memory_bytes();
        std::uint64_t const announced = table.growth_bytes(1);
        table.find_or_add(new NodeTerm(graph, node));
        std::uint64_t const grown = table.memory_bytes() - before;
        ASSERT_TRUE(node == 0 || (grown > 0) == (announced > 0)) << node;
        ASSERT_LE(grown, announced * 2 + (node == 0 ? 4096 : 0)) << node;
    }
}

} // namespace
} // namespace Calder::StateSpace
