#include "process_compiler/guarded_maker.h"
#include "process_compiler/recursion_watch.h"
#include "state_space/machine/machine_exploration.h"
#include "tests/state_space/counted_allocation.h"
#include "tests/state_space/machine/fake_construct.h"
#include "tests/support/fake_maker.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace Calder::StateSpace {
namespace {

using namespace Testing;
using ProcessCompiler::NamedProcessPointer;
using ProcessCompiler::Testing::FakeMaker;

constexpr unsigned endless = std::numeric_limits<unsigned>::max();

struct NoSuchValue : std::runtime_error {
    NoSuchValue() : std::runtime_error("no such value") {}
};

/// A counter up to `size`: instance n does 3 and is instance n + 1, the last one is the first.
struct Counter {
    explicit Counter(unsigned how_many, bool sequential = true)
        : size(how_many), is_sequential(sequential) {
        source.set_maker(&guarded);
        add();
    }

    NamedProcessPointer const& add() {
        NamedProcessPointer const& made = source.add_reference();
        if (is_sequential) {
            source.declare_sequential(*made);
        }
        return made;
    }
    ProcessPointer make(unsigned number) {
        if (number == fails_at) {
            throw NoSuchValue();
        }
        ProcessPointer const next = number + 1 < size ? add() : source.references().front();
        auto* const made = new FakeConstruct("count " + std::to_string(number), {next});
        made->level = CompilationLevel::low;
        made->state = ProcessCompiler::ArgumentState::off;
        made->transitions.emplace_back(3, next);
        return made;
    }
    ProcessPointer start() const { return source.references().front(); }
    /// Beside another component.
    ProcessPointer network() const { return construct("network", {start(), ring("b", 2, 4)}); }

    unsigned size;
    bool is_sequential;
    unsigned fails_at = endless;
    NamedProcessSource source;
    FakeMaker maker{[this](unsigned number) { return make(number); }};
    ProcessCompiler::GuardedMaker guarded{source, maker};
};

TEST(Instances, are_made_as_they_are_reached) {
    Counter finite(1'000);
    Exploration const all = explore(finite.start(), finite.source);
    EXPECT_EQ(all.outcome, Outcome::complete);
    EXPECT_EQ(all.lts.state_count(), 1'000U);
    EXPECT_EQ(finite.maker.made.size(), 1'000U);
    EXPECT_EQ(rows_of(all.lts)[999], (Row{{3, 0}}));

    Counter without_end(endless);
    ExplorationOptions options;
    options.max_states = 1'000;
    Exploration const first = explore(without_end.start(), without_end.source, options);
    EXPECT_EQ(first.outcome, Outcome::state_limit);
    EXPECT_EQ(first.lts.state_count(), 1'000U);
    EXPECT_EQ(without_end.maker.made.size(), 1'000U);
}

TEST(Instances, of_a_sequential_component_are_a_leaf_that_is_not_looked_into_before) {
    Counter counter(1'000);
    TermGraph graph = make_term_graph(counter.network(), counter.source);
    EXPECT_EQ(graph.vertices.size(), 3U);
    EXPECT_TRUE(counter.maker.made.empty());
    Compilation const compilation = compile(std::move(graph), counter.source);
    ASSERT_NE(compilation.machine, nullptr);
    ASSERT_EQ(compilation.machine->leaves.size(), 2U);
    EXPECT_EQ(compilation.machine->leaves[0]->state_count(), 1'000U);
    EXPECT_EQ(counter.maker.made.size(), 1'000U);
    EXPECT_EQ(explore_by_machine(counter.network(), counter.source, {}).run.state_count, 2'000U);
    // Alone there is nothing to compile.
    EXPECT_EQ(explore_by_machine(counter.start(), counter.source, {}).run.state_count, 1'000U);
}

TEST(Instances, what_is_sequential_need_not_be_known_to_be) {
    Counter counter(1'000, false);
    EXPECT_EQ(make_term_graph(counter.network(), counter.source).vertices.size(), 2'002U);
    MachineExploration const found = explore_by_machine(counter.network(), counter.source, {});
    EXPECT_EQ(found.run.refusal, "");
    EXPECT_EQ(found.run.state_count, 2'000U);
}

TEST(Instances, a_component_without_end_meets_the_limit_on_its_states) {
    Counter counter(endless);
    Compilation const compilation =
        compile(make_term_graph(counter.network(), counter.source), counter.source, {1'000});
    EXPECT_EQ(compilation.refusal, "one of its components has more than 1000 states");
    EXPECT_EQ(counter.maker.made.size(), 1'000U);
}

/// P(n) = (ring ||| P(n + 1)), the last one STOP.
struct Tower {
    explicit Tower(unsigned how_many) : size(how_many) {
        source.set_maker(&maker);
        source.add_reference();
    }

    ProcessPointer make(unsigned number) {
        return number + 1 == size ? ProcessPointer(new FakeProcess("end"))
                                  : construct("P" + std::to_string(number),
                                              {ring("a", 1, 3), source.add_reference()});
    }

    unsigned size;
    NamedProcessSource source;
    FakeMaker maker{[this](unsigned number) { return make(number); }};
};

TEST(Instances, a_machine_is_made_of_so_many_and_no_more) {
    for (unsigned const size : {most_instances, most_instances + 1, endless}) {
        Tower tower(size);
        TermGraph graph = make_term_graph(tower.source.references().front(), tower.source);
        EXPECT_EQ(tower.maker.made.size(), most_instances);
        EXPECT_EQ(graph.is_whole(), size == most_instances);
        if (!graph.is_whole()) {
            EXPECT_TRUE(graph.vertices.empty());
            Compilation const compilation = compile(std::move(graph), tower.source);
            EXPECT_EQ(compilation.machine, nullptr);
            EXPECT_EQ(compilation.refusal, "it is made of more than 100000 instances");
        }
    }
}

/// Makes nothing, for ever, but looks round as whoever makes and compares terms does.
ProcessPointer make_for_ever(unsigned) {
    for (;;) {
        ProcessCompiler::watch_recursion();
    }
}

TEST(Instances, limits_and_interruption_count_while_they_are_made) {
    struct Case {
        char const* what;
        bool is_interrupted; // at the second look; otherwise the memory is at its limit
        bool is_for_ever;    // the maker, in the first call
    } const rows[] = {
        {"interrupted between instances", true, false},
        {"interrupted within one", true, true},
        {"memory between instances", false, false},
        {"memory within one", false, true},
    };
    for (Case const& row : rows) {
        Counter counter(endless, false);
        if (row.is_for_ever) {
            counter.maker.build = make_for_ever;
        }
        unsigned looks = 0;
        RunOptions options;
        if (row.is_interrupted) {
            options.progress = [&looks](Progress const&) { return ++looks < 2; };
        } else {
            options.max_memory = 1;
        }
        Exploration const by_terms = explore(counter.start(), counter.source, options);
        EXPECT_EQ(by_terms.outcome,
                  row.is_interrupted ? Outcome::interrupted : Outcome::memory_limit)
            << row.what;
        looks = 0;
        auto const by_machine = explore_by_machine(counter.start(), counter.source, options);
        EXPECT_EQ(by_machine.run.outcome,
                  row.is_interrupted ? Outcome::interrupted : Outcome::complete)
            << row.what;
        EXPECT_EQ(by_machine.run.refusal,
                  row.is_interrupted ? ""
                                     : "while it was compiled, the limit on memory was reached")
            << row.what;
        EXPECT_LT(counter.maker.made.size(), 50'000U) << row.what;
    }
}

TEST(Instances, what_a_maker_throws_ends_a_search_and_loses_nothing) {
    if (!allocations_can_fail()) {
        GTEST_SKIP() << why_not_counted;
    }
    struct {
        char const* what;
        bool is_sequential;
        bool in_network;
        unsigned threads;
    } const rows[] = {
        {"term by term", true, false, 1},
        {"among the terms of a machine", false, true, 2},
        {"in a leaf of a machine", true, true, 2},
    };
    for (auto const& row : rows) {
        std::ptrdiff_t const before = blocks_in_use();
        {
            Counter counter(100, row.is_sequential);
            ProcessPointer const start = row.in_network ? counter.network() : counter.start();
            RunOptions options;
            options.threads = row.threads;
            for (unsigned const number : {0U, 50U, 99U}) {
                counter.fails_at = number;
                EXPECT_THROW((void)explore_by_machine(start, counter.source, options), NoSuchValue)
                    << row.what << " at " << number;
                EXPECT_THROW((void)explore(counter.start(), counter.source), NoSuchValue);
            }
            counter.fails_at = endless;
            EXPECT_EQ(explore_by_machine(start, counter.source, options).run.state_count,
                      row.in_network ? 200U : 100U);
        }
        EXPECT_EQ(blocks_in_use(), before) << row.what;
    }
}

TEST(Instances, a_reference_costs_one_allocation_but_for_growing_arrays) {
    if (!allocations_can_fail()) {
        GTEST_SKIP() << why_not_counted;
    }
    constexpr std::size_t count = 10'000;
    NamedProcessSource source;
    std::size_t const before = allocation_count();
    for (std::size_t made = 0; made < count; ++made) {
        source.add_reference();
    }
    EXPECT_LT(allocation_count() - before, count + count / 20);
}

} // namespace
} // namespace Calder::StateSpace
