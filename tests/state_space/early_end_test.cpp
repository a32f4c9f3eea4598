#include "state_space/exploration.h"
#include "state_space/memory.h"
#include "state_space/search_monitor.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <sys/mman.h>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

Exploration explore_graph(Graph const& graph, ExplorationOptions const& options = {}) {
    Testing::NamedProcessSource const source;
    return explore(new NodeTerm(graph, 0), source, options);
}

/// A start that leads to 1, …, `width`, which lead back.
Graph star(unsigned width) {
    Graph graph{{{}}};
    for (unsigned node = 1; node <= width; ++node) {
        graph.rows[0].emplace_back(3, node);
        graph.rows.push_back({{4, 0}});
    }
    return graph;
}

TEST(EarlyEnd, the_state_limit_is_exact) {
    // 0 leads to 1 and 2, 1 to 3, 2 to 4 after going back to 0.
    Graph const graph{{{{3, 1}, {4, 2}}, {{3, 3}}, {{3, 0}, {4, 4}}, {}, {{3, 3}}}};
    struct {
        StateNumber max_states;
        Outcome outcome;
        StateNumber states, explored;
    } const rows[] = {
        {0, Outcome::state_limit, 0, 0}, {1, Outcome::state_limit, 1, 0},
        {2, Outcome::state_limit, 2, 0}, {3, Outcome::state_limit, 3, 1},
        {4, Outcome::state_limit, 4, 2}, {5, Outcome::complete, 5, 5},
        {6, Outcome::complete, 5, 5},    {no_state, Outcome::complete, 5, 5},
    };
    for (auto const& row : rows) {
        ExplorationOptions options;
        options.max_states = row.max_states;
        Exploration const found = explore_graph(graph, options);
        EXPECT_EQ(found.outcome, row.outcome) << row.max_states;
        EXPECT_EQ(found.lts.state_count(), row.states) << row.max_states;
        Rows const explored(graph.rows.begin(), graph.rows.begin() + row.explored);
        EXPECT_EQ(rows_of(found.lts), explored) << row.max_states;
        EXPECT_FALSE(describe(found.outcome).empty());
    }
}

TEST(EarlyEnd, progress_tells_how_far_it_is_and_may_interrupt) {
    constexpr unsigned width = 20'000;
    Graph const graph = star(width);
    std::vector<Progress> told;
    ExplorationOptions options;
    options.progress = [&](Progress const& progress) {
        told.push_back(progress);
        return true;
    };
    EXPECT_EQ(explore_graph(graph, options).outcome, Outcome::complete);
    ASSERT_GE(told.size(), 2 * width / 4096);
    Progress before;
    for (Progress const& now : told) {
        EXPECT_GT(now.transitions, before.transitions);
        EXPECT_GE(now.explored, before.explored);
        EXPECT_EQ(now.frontier, now.states - now.explored);
        EXPECT_EQ(now.depth, now.explored == 0 ? 0U : 1U);
        EXPECT_GT(now.memory, 0U);
        before = now;
    }

    // At the first look, in the middle of the wide row, and in one of the rows after it.
    for (std::uint64_t const transitions : {1U, width / 2, width + width / 2}) {
        Progress last;
        options.progress = [&](Progress const& progress) {
            last = progress;
            return progress.transitions < transitions;
        };
        Exploration const found = explore_graph(graph, options);
        EXPECT_EQ(found.outcome, Outcome::interrupted);
        EXPECT_EQ(found.lts.state_count(), last.states);
        EXPECT_EQ(found.lts.explored_count(), last.explored);
        EXPECT_EQ(last.explored == 0, transitions < width);
        EXPECT_LT(found.lts.transition_count(), last.transitions) << "the row is dropped";
    }
}

TEST(EarlyEnd, the_memory_limit_is_for_the_resident_set) {
    Graph const graph = star(20'000);
    ExplorationOptions options;
    options.max_memory = 1;
    Exploration const stopped = explore_graph(graph, options);
    EXPECT_EQ(stopped.outcome, Outcome::memory_limit);
    EXPECT_EQ(stopped.lts.explored_count(), 0U);
    EXPECT_GT(stopped.lts.state_count(), 0U);

    options.max_memory = peak_resident_bytes() + (std::uint64_t{1} << 30);
    EXPECT_EQ(explore_graph(graph, options).outcome, Outcome::complete);
}

TEST(EarlyEnd, memory_that_runs_out_leaves_what_is_explored) {
    Graph graph{{{{3, 1}, {4, 2}}, {{3, 3}, {3, 4}}, {{3, 0}}, {}, {}}};
    struct {
        unsigned node;
        StateNumber states;
        Rows explored;
    } const rows[] = {
        {0, 2, {}},
        {1, 4, {{{3, 1}, {4, 2}}}},
        {2, 5, {{{3, 1}, {4, 2}}, {{3, 3}, {3, 4}}}},
    };
    for (auto const& row : rows) {
        graph.node_without_memory = row.node;
        Exploration const found = explore_graph(graph);
        EXPECT_EQ(found.outcome, Outcome::memory_limit) << row.node;
        EXPECT_EQ(found.lts.state_count(), row.states) << row.node;
        EXPECT_EQ(rows_of(found.lts), row.explored) << row.node;
    }
}

TEST(EarlyEnd, what_comes_first_is_what_ended_it) {
    // The rows of 1 and 2 are asked for before the states of either are found.
    Graph graph{{{{3, 1}, {4, 2}}, {{3, 3}, {3, 4}}, {{3, 5}, {3, 6}}, {}, {}, {}, {}}};
    graph.node_without_memory = 2;
    struct {
        StateNumber max_states;
        Outcome outcome;
        StateNumber states, explored;
    } const rows[] = {
        {3, Outcome::state_limit, 3, 1},
        {4, Outcome::state_limit, 4, 1},
        {5, Outcome::state_limit, 5, 2},
        {6, Outcome::memory_limit, 6, 2},
    };
    for (auto const& row : rows) {
        ExplorationOptions options;
        options.max_states = row.max_states;
        Exploration const found = explore_graph(graph, options);
        EXPECT_EQ(found.outcome, row.outcome) << row.max_states;
        EXPECT_EQ(found.lts.state_count(), row.states) << row.max_states;
        EXPECT_EQ(found.lts.explored_count(), row.explored) << row.max_states;
    }
}

TEST(SearchMonitor, looks_around_after_enough_work_and_counts_what_is_about_to_grow) {
    constexpr std::uint64_t reserve = std::uint64_t{64} << 20;
    ExplorationOptions const options{no_state, resident_bytes() + reserve, nullptr};
    SearchMonitor monitor(options, SearchMonitor::longest_for_terms);
    unsigned work = 1;
    for (; !monitor.is_due(); ++work) {
    }
    EXPECT_EQ(work, 64U);
    EXPECT_TRUE(monitor.look_around({}, reserve / 2));
    EXPECT_FALSE(monitor.is_due(monitor.work_ahead() / 2 - 1));
    EXPECT_LE(monitor.memory_left(), 2 * reserve);
    monitor.go_on(1, 0);
    monitor.go_on(1, 2 * reserve); // not looked at before its time
    EXPECT_THROW(monitor.go_on(1'000'000, 2 * reserve), SearchEnded);
    EXPECT_EQ(monitor.outcome(), Outcome::memory_limit);
}

TEST(Memory, resident_bytes_follow_what_is_touched) {
    constexpr std::size_t size = std::size_t{64} << 20;
    std::uint64_t const before = resident_bytes();
    // From the system itself: an allocation that is only written to may be optimised away.
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    std::memset(memory, 'x', size);
    EXPECT_GE(resident_bytes(), before + size / 2);
    EXPECT_GE(peak_resident_bytes(), before + size / 2);
    EXPECT_LT(resident_bytes(), before + size * 4);
    munmap(memory, size);
    EXPECT_LT(resident_bytes(), before + size / 2);
    EXPECT_GE(peak_resident_bytes(), before + size / 2);
}

} // namespace
} // namespace Calder::StateSpace
