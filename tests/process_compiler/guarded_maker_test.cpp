#include "process_compiler/guarded_maker.h"
#include "process_compiler/named_process_source.h"
#include "tests/support/fake_maker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakeMaker;
using Testing::FakePointer;
using Testing::FakeProcess;

using Numbers = std::vector<unsigned>;
using Graph = std::vector<Numbers>; // by instance: those that it leads to

/// Instances 0, 1, … of a source, each of which leads to others in one term.
struct Instances {
    explicit Instances(std::function<Numbers(unsigned)> leads_to)
        : maker([this, leads_to](unsigned number) { return term(leads_to(number)); }) {
        source.set_maker(&guarded);
    }
    explicit Instances(Graph const& graph)
        : Instances([graph](unsigned number) { return graph.at(number); }) {}

    NamedProcessPointer const& reference(unsigned number) {
        while (source.references().size() <= number) {
            source.add_reference();
        }
        return source.references()[number];
    }
    ProcessPointer term(Numbers const& numbers) {
        OwningArray<ProcessPointer> arguments(numbers.size());
        std::transform(numbers.begin(), numbers.end(), arguments.begin(),
                       [this](unsigned number) { return reference(number); });
        FakePointer const made(new FakeProcess("term", arguments));
        made->state = state;
        return made;
    }
    /// What is said where it is asked for; nothing when it is made.
    std::string error_of(unsigned number) {
        try {
            source.process(*reference(number));
            return "";
        } catch (UnguardedRecursion const& error) {
            return error.what();
        }
    }

    ArgumentState state = ArgumentState::on;
    NamedProcessSource source;
    FakeMaker maker;
    GuardedMaker guarded{source, maker};
};

TEST(GuardedMaker, makes_what_runs_from_the_start_and_finds_the_cycles) {
    struct {
        char const* what;
        Graph graph;
        Numbers made; // where 0 is asked for
        std::string error;
    } const rows[] = {
        {"nothing runs", {{}}, {0}, ""},
        {"one after the other", {{1}, {2}, {}}, {0, 1, 2}, ""},
        {"side by side, in order", {{2, 1}, {}, {}}, {0, 2, 1}, ""},
        {"twice", {{1, 1, 2}, {}, {1}}, {0, 1, 2}, ""},
        {"by two ways", {{1, 2}, {3}, {3}, {}}, {0, 1, 3, 2}, ""},
        {"itself", {{0}}, {0}, "recursion without a guard: P(0) runs P(0) from the start"},
        {"each other",
         {{1}, {0}},
         {0, 1},
         "recursion without a guard: P(0) runs P(1), P(1) runs P(0) from the start"},
        {"a cycle further on",
         {{1, 3}, {2}, {}, {4}, {2, 3}},
         {0, 1, 2, 3, 4},
         "recursion without a guard: P(3) runs P(4), P(4) runs P(3) from the start"},
    };
    for (auto const& row : rows) {
        Instances instances(row.graph);
        EXPECT_EQ(instances.error_of(0), row.error) << row.what;
        EXPECT_EQ(instances.maker.made, row.made) << row.what;
        EXPECT_EQ(instances.error_of(0), row.error) << row.what << ", once more";
        if (row.error.empty()) {
            EXPECT_EQ(instances.maker.made, row.made) << row.what << ": made once";
        } else {
            unsigned const last = row.made.back();
            EXPECT_FALSE(instances.source.is_defined(*instances.reference(0))) << row.what;
            EXPECT_FALSE(instances.source.is_defined(*instances.reference(last))) << row.what;
        }
    }
}

TEST(GuardedMaker, makes_nothing_behind_a_guard) {
    Instances instances(Graph{{1}, {0}});
    instances.state = ArgumentState::off;
    EXPECT_EQ(instances.error_of(0), "");
    EXPECT_EQ(instances.maker.made, Numbers{0});
    EXPECT_EQ(instances.error_of(1), "");
    EXPECT_EQ(instances.maker.made, (Numbers{0, 1}));
}

TEST(GuardedMaker, follows_names_that_were_defined) {
    // MAIN runs 0, which runs NAME, which runs what the row says.
    for (char const* const runs : {"STOP", "MAIN"}) {
        Instances instances([&](unsigned) -> Numbers { return {2}; });
        NamedProcessSource& source = instances.source;
        (void)instances.reference(0);
        source.define("MAIN", instances.term({0}));
        ASSERT_EQ(source.reference("NAME")->number(), 2U);
        source.define("NAME", source.reference(runs));
        source.define("STOP", new FakeProcess("STOP"));
        EXPECT_TRUE(find_unguarded_recursion(source).empty()) << "is not known yet";
        EXPECT_EQ(instances.error_of(0),
                  std::string(runs) == "STOP"
                      ? ""
                      : "recursion without a guard: P(0) runs NAME, NAME runs MAIN, MAIN runs P(0) "
                        "from the start");
    }
}

TEST(GuardedMaker, a_chain_of_instances_has_a_limit) {
    for (unsigned const length : {unguarded_chain_limit, unguarded_chain_limit + 1}) {
        Instances instances([length](unsigned number) {
            return number < length ? Numbers{number + 1} : Numbers{};
        });
        bool const is_short = length == unguarded_chain_limit;
        EXPECT_EQ(instances.error_of(0),
                  is_short ? ""
                           : "P(0) runs more than 1000 processes from the start, one within the "
                             "other: P(1), P(2), P(3) and so on");
        EXPECT_EQ(instances.maker.made.size(), unguarded_chain_limit + 1);
        EXPECT_EQ(instances.source.is_defined(*instances.reference(unguarded_chain_limit)),
                  is_short);
        EXPECT_EQ(instances.error_of(1), "") << "is shorter by one";
    }
}

TEST(GuardedMaker, neither_what_runs_side_by_side_nor_what_was_defined_counts_as_a_chain) {
    constexpr unsigned count = 2 * unguarded_chain_limit;
    Numbers all(count);
    std::iota(all.begin(), all.end(), 1);
    Instances side_by_side([&](unsigned number) { return number == 0 ? all : Numbers{}; });
    EXPECT_EQ(side_by_side.error_of(0), "");
    EXPECT_EQ(side_by_side.maker.made.size(), count + 1);

    Instances defined([](unsigned number) { return number < 2 ? Numbers{number + 1} : Numbers{}; });
    (void)defined.reference(count);
    for (unsigned number = 2; number < count; ++number) {
        defined.source.define(*defined.reference(number), defined.term({number + 1}));
    }
    EXPECT_EQ(defined.error_of(0), "");
    EXPECT_EQ(defined.maker.made, (Numbers{0, 1, count}));
}

TEST(GuardedMaker, each_is_made_and_visited_once_however_long_the_chain_behind_it) {
    constexpr unsigned count = 100'000;
    Instances instances([](unsigned number) {
        return number == 0 ? Numbers{} : Numbers{number - 1, 0};
    });
    for (unsigned number = 0; number < count; ++number) {
        ASSERT_EQ(instances.error_of(number), "");
    }
    EXPECT_EQ(instances.maker.made.size(), count);
}

TEST(GuardedMaker, passes_on_what_the_other_maker_throws) {
    unsigned fails_at = 2;
    Instances instances([&](unsigned number) {
        if (number == fails_at) {
            throw std::range_error("no such value");
        }
        return number < 3 ? Numbers{number + 1} : Numbers{};
    });
    EXPECT_THROW(instances.error_of(0), std::range_error);
    EXPECT_FALSE(instances.source.is_defined(*instances.reference(1)));
    EXPECT_THROW(instances.error_of(0), std::range_error);
    fails_at = 99;
    EXPECT_EQ(instances.error_of(0), "");
    EXPECT_EQ(instances.maker.made, (Numbers{0, 1, 2, 0, 1, 2, 0, 1, 2, 3}));
}

TEST(GuardedMakerDeathTest, a_maker_must_not_ask_for_another_process) {
    Instances instances([&](unsigned number) {
        instances.source.process(*instances.reference(number + 1));
        return Numbers{};
    });
    EXPECT_EXIT(instances.error_of(0), testing::KilledBySignal(SIGABRT),
                "The process P\\(1\\) was asked for while another one was made");
}

} // namespace
} // namespace Calder::ProcessCompiler
