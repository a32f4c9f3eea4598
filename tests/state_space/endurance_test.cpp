#include "process_compiler/guarded_maker.h"
#include "process_compiler/session.h"
#include "state_space/machine/machine_exploration.h"
#include "state_space/machine/run/run.h"
#include "state_space/machine/run/team.h"
#include "tests/state_space/counted_allocation.h"
#include "tests/state_space/machine/fake_construct.h"
#include "tests/state_space/stack_of_size.h"
#include "tests/support/fake_maker.h"

#include <gtest/gtest.h>

#include <system_error>

namespace Calder::StateSpace {
namespace {

using namespace Testing;
using ProcessCompiler::Testing::FakeMaker;

constexpr std::size_t mib = std::size_t{1} << 20;

/// Asks its argument so many times before it reports a step of its own, and passes nothing on: as
/// operators that synchronise do.
class Collecting : public FakeProcess {
  public:
    Collecting(ProcessPointer argument, unsigned times)
        : FakeProcess("collecting", 1), m_times(times) {
        arguments[0] = std::move(argument);
    }

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override {
        for (unsigned time = 0; time < m_times; ++time) {
            arguments[0]->visit_transitions(source, [](auto, auto const&) { return true; });
        }
        return visitor(3, self());
    }

  private:
    unsigned m_times;
};

/// P0, which asks P1 so many times, which asks P2, …
ProcessPointer chain_of_names(NamedProcessSource& source, unsigned length, unsigned times) {
    for (unsigned number = 0; number < length; ++number) {
        std::string const next = "P" + std::to_string(number + 1);
        source.define("P" + std::to_string(number), new Collecting(source.reference(next), times));
    }
    source.define("P" + std::to_string(length), new FakeProcess("end"));
    return source.reference("P0");
}

RunOptions with_progress(std::function<bool(Progress const&)> progress) {
    RunOptions options;
    options.progress = std::move(progress);
    return options;
}

RunOptions with_memory(std::uint64_t bytes) {
    RunOptions options;
    options.max_memory = bytes;
    return options;
}

TEST(Endurance, what_only_collects_is_watched_at_every_level) {
    auto const interrupt = [](Progress const&) { return false; };
    struct {
        unsigned length, times;
        RunOptions options;
        Outcome outcome;
    } const rows[] = {
        {30, 2, with_progress(interrupt), Outcome::interrupted},
        {30, 2, with_memory(1), Outcome::memory_limit},
        {100'000, 1, {}, Outcome::nesting_limit},
        {10, 2, {}, Outcome::complete},
    };
    for (auto const& row : rows) {
        run_with_stack(8 * mib, [&] {
            NamedProcessSource source;
            ProcessPointer const start = chain_of_names(source, row.length, row.times);
            Exploration const found = explore(start, source, row.options);
            EXPECT_EQ(found.outcome, row.outcome) << row.length;
            EXPECT_EQ(found.lts.explored_count(), row.outcome == Outcome::complete ? 2U : 0U);
        });
    }
}

TEST(Endurance, a_leaf_that_only_collects_ends_a_compilation_in_the_same_ways) {
    NamedProcessSource source;
    ProcessPointer const leaf = chain_of_names(source, 30, 2);
    ProcessPointer const network = construct("network", {leaf, ring("b", 2, 4)});
    auto const interrupt = [](Progress const&) { return false; };
    MachineExploration const found = explore_by_machine(network, source, with_progress(interrupt));
    EXPECT_EQ(found.run.outcome, Outcome::interrupted);
    EXPECT_EQ(found.run.state_count, 0U);
}

/// The k-th thread and all after it do not start.
Team::ThreadStarter starts_before(unsigned& asked, unsigned k) {
    return [&asked, k](std::function<void()> work) {
        if (++asked > k) {
            throw std::system_error(
                std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        return std::thread(std::move(work));
    };
}

TEST(Endurance, the_threads_that_start_do_the_work) {
    for (unsigned const started : {0U, 1U, 2U, 3U}) {
        unsigned asked = 0;
        Team team(4, starts_before(asked, started));
        EXPECT_EQ(asked, std::min(started + 1, 3U));
        EXPECT_EQ(team.size(), started + 1);
        std::vector<unsigned> done(100, 0);
        for (unsigned work = 0; work < 50; ++work) {
            std::size_t const pieces = work % 3 == 0 ? work % 2 : done.size();
            team.each(pieces, [&](unsigned thread, std::size_t piece) {
                EXPECT_LT(thread, team.size());
                ++done[piece];
            });
        }
        EXPECT_EQ(done[0], 33U + 8U) << started;
        EXPECT_EQ(done[99], 33U) << started;
    }
}

TEST(Endurance, no_thread_is_left_behind_where_another_error_ends_the_start) {
    unsigned asked = 0;
    auto const start = [&asked](std::function<void()> work) {
        if (++asked == 3) {
            throw std::bad_alloc();
        }
        return std::thread(std::move(work));
    };
    EXPECT_THROW(Team(4, start), std::bad_alloc);
}

/// Two rings side by side, as a term that both engines know.
struct Network {
    ProcessPointer term = construct("network", {ring("a", 3, 3), ring("b", 4, 4)});
    NamedProcessSource source;
};

using Work = std::function<bool()>; // whether it came to its end

bool is_complete(Run const& run, StateNumber states) {
    if (run.outcome == Outcome::complete && run.refusal.empty()) {
        EXPECT_EQ(run.state_count, states);
        return true;
    }
    return false;
}

bool run_machine() {
    Network network;
    return is_complete(explore_by_machine(network.term, network.source, {}).run, 12);
}

/// By a team, round after round.
bool run_rounds() {
    Network network;
    auto const machine = machine_of(network.term);
    if (!machine) {
        return false;
    }
    ConfigurationTables tables(*machine);
    RunOptions options;
    options.threads = 3;
    return is_complete(run(tables, options, {1, 1}), 12);
}

/// A component of instances that are made by the way, beside another one.
bool make_instances() {
    NamedProcessSource source;
    FakeMaker maker([&source](unsigned number) -> ProcessPointer {
        ProcessPointer const next = number < 9 ? source.add_reference() : source.references()[0];
        ProcessCompiler::Testing::FakePointer const made(
            new FakeProcess("made " + std::to_string(number)));
        made->transitions.emplace_back(3, next);
        return made;
    });
    ProcessCompiler::GuardedMaker guarded(source, maker);
    source.set_maker(&guarded);
    source.declare_sequential(*source.add_reference());
    ProcessPointer const network = construct("network", {source.references()[0], ring("b", 2, 4)});
    return is_complete(explore_by_machine(network, source, {}).run, 20);
}

bool explore_terms() {
    NamedProcessSource source;
    ProcessPointer const start = chain_of_names(source, 5, 2);
    return is_complete(run_of(explore(start, source)), 2);
}

/// Declares events and names, again where memory ran out: numbers stay apart.
bool declare() {
    ProcessCompiler::Session session;
    NamedProcessSource source;
    for (std::string const name : {"a", "b", "a name that is too long to stand in the string"}) {
        try {
            session.declare_event(name);
            source.reference(name);
        } catch (std::bad_alloc const&) {
        }
        unsigned const event = session.declare_event(name);
        EXPECT_EQ(session.event_object(event)->name(), name);
        EXPECT_EQ(source.references()[source.reference(name)->number()]->name(), name);
    }
    EXPECT_EQ(session.number_bound(), 6U);
    EXPECT_EQ(source.references().size(), 3U);
    return true;
}

TEST(Endurance, an_allocation_that_fails_ends_a_search_and_loses_nothing) {
    if (!allocations_can_fail()) {
        GTEST_SKIP() << why_not_counted;
    }
    struct {
        char const* name;
        Work work;
        unsigned at_least;
    } const rows[] = {
        {"declarations", declare, 10},
        {"terms", explore_terms, 30},
        {"instances", make_instances, 100},
        {"machine", run_machine, 100},
        {"machine, round after round", run_rounds, 100},
    };
    for (auto const& row : rows) {
        row.work(); // what is allocated once for the whole program
        unsigned failed = 0;
        bool done = false;
        for (std::size_t number = 1; !done; ++number) {
            std::ptrdiff_t const before = blocks_in_use();
            FailingAllocation const failing(number);
            try {
                done = row.work() && !failing.has_failed();
            } catch (std::bad_alloc const&) {
            }
            failed += failing.has_failed() ? 1 : 0;
            EXPECT_EQ(blocks_in_use(), before) << row.name << " at allocation " << number;
            ASSERT_LT(number, 100'000U) << row.name;
        }
        EXPECT_GE(failed, row.at_least) << row.name;
    }
}

} // namespace
} // namespace Calder::StateSpace
