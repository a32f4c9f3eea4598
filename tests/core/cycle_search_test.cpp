#include "core/cycle_search.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace Calder {
namespace {

using Vertices = std::vector<std::uint32_t>;
using Edges = std::vector<Vertices>; // by vertex

struct Found {
    std::vector<Vertices> cycles, loops;
};

Found search(Edges const& edges) {
    Found found;
    for_each_cycle(
        static_cast<std::uint32_t>(edges.size()),
        [&](std::uint32_t vertex) -> Vertices const& { return edges[vertex]; },
        [&](auto members) { found.cycles.emplace_back(members.begin(), members.end()); },
        [&](auto path) { found.loops.emplace_back(path.begin(), path.end()); });
    return found;
}

TEST(CycleSearch, gives_cycles_after_what_they_lead_to_and_loops_as_they_close) {
    struct {
        char const* shape;
        Edges edges;
        std::vector<Vertices> cycles, loops;
    } const rows[] = {
        {"nothing", {}, {}, {}},
        {"a vertex alone", {{}}, {{0}}, {}},
        {"a vertex on itself, twice", {{0, 0}}, {{0}}, {{0}, {0}}},
        {"a chain", {{1}, {2}, {}}, {{2}, {1}, {0}}, {}},
        {"two ways to one", {{1, 2}, {3}, {3}, {}}, {{3}, {1}, {2}, {0}}, {}},
        {"a ring behind a vertex", {{2}, {2}, {3}, {1}}, {{2, 3, 1}, {0}}, {{2, 3, 1}}},
        {"an edge to what is open but not on the path", {{1, 2}, {0}, {1}}, {{0, 1, 2}}, {{0, 1}}},
        {"an edge to what is closed", {{1, 0}, {}, {1}}, {{1}, {0}, {2}}, {{0}}},
    };
    for (auto const& row : rows) {
        Found const found = search(row.edges);
        EXPECT_EQ(found.cycles, row.cycles) << row.shape;
        EXPECT_EQ(found.loops, row.loops) << row.shape;
    }
}

std::set<std::uint32_t> reachable(Edges const& edges, std::uint32_t start) {
    std::set<std::uint32_t> seen{start};
    for (Vertices waiting{start}; !waiting.empty();) {
        Vertices const next = edges[waiting.back()];
        waiting.pop_back();
        for (std::uint32_t const target : next) {
            if (seen.insert(target).second) {
                waiting.push_back(target);
            }
        }
    }
    return seen;
}

TEST(CycleSearch, a_cycle_is_what_reaches_each_other) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        Edges edges(3 + seed / 2);
        for (Vertices& each : edges) {
            for (auto count = random() % 3; count > 0; --count) {
                each.push_back(static_cast<std::uint32_t>(random() % edges.size()));
            }
        }
        Found const found = search(edges);
        std::vector<std::size_t> cycle_of(edges.size(), edges.size());
        for (std::size_t number = 0; number < found.cycles.size(); ++number) {
            for (std::uint32_t const member : found.cycles[number]) {
                cycle_of[member] = number;
            }
        }
        for (std::uint32_t i = 0; i < edges.size(); ++i) {
            for (std::uint32_t const j : reachable(edges, i)) {
                EXPECT_EQ(cycle_of[i] == cycle_of[j], reachable(edges, j).count(i) > 0) << seed;
                EXPECT_GE(cycle_of[i], cycle_of[j]) << seed;
            }
        }
    }
}

} // namespace
} // namespace Calder
