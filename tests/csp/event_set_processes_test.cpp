#include "csp/chaos_process.h"
#include "csp/event_set_prefix_process.h"
#include "csp/run_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

/// RUN and CHAOS: terms over a set, without arguments.
class EventSetProcessesTest : public ConstructTest {
  protected:
    static ProcessPointer run(BitSet const& events) { return new RunProcess(events); }
    static ProcessPointer chaos(BitSet const& events) { return new ChaosProcess(events); }
};

TEST_F(EventSetProcessesTest, run_performs_its_events_and_stays_the_same_object) {
    ProcessPointer const term = run({c, a});
    EXPECT_EQ(steps(*term), (Steps{{a, term}, {c, term}}));
    EXPECT_EQ(steps(*term, 0).size(), 1U);
    EXPECT_TRUE(steps(*run({})).empty());
}

TEST_F(EventSetProcessesTest, chaos_may_stop_or_offer_everything) {
    ProcessPointer const term = chaos({b, a});
    Steps const seen = steps(*term);
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].first, tau);
    EXPECT_EQ(seen[1].first, tau);
    expect_equality(*seen[0].second, *stop, true);
    EXPECT_EQ(seen[0].second, steps(*term)[0].second) << "one STOP for the whole file";
    expect_equality(*seen[1].second, *choice({prefix(a, term), prefix(b, term)}), true);
    EXPECT_EQ(steps(*seen[1].second)[1].second, term) << "the state space is finite";

    EXPECT_EQ(steps(*term, 0).size(), 1U);
    Steps const nothing = steps(*chaos({}));
    expect_equality(*nothing[1].second, *stop, true);
    EXPECT_NE(nothing[1].second, nothing[0].second);
}

TEST_F(EventSetProcessesTest, are_their_kind_and_their_set) {
    EventSet const given({new Event("b"), new Event("a")});
    struct {
        ProcessPointer term;
        ProcessPointer other;
        bool equal;
    } const rows[] = {
        {run({a, b}), new RunProcess(session, given), true},
        {chaos({a, b}), new ChaosProcess(session, given), true},
        {run({a, b}), run({a}), false},
        {chaos({a, b}), chaos({a}), false},
        {run({a, b}), chaos({a, b}), false},
        {run({}), stop, false},
        {run({a}), run({a})->clone(false), true},
        {chaos({a}), chaos({a})->clone(true), true},
    };
    for (auto const& row : rows) {
        expect_equality(*row.term, *row.other, row.equal);
        EXPECT_NE(row.term, row.other);
    }
    EXPECT_EQ(run({})->hash_code(), 0x923b6fb0d4800626U);
    EXPECT_EQ(chaos({})->hash_code(), 0x4a896d9d8516b63eU);
    run({a})->set_arguments(OwningArray<ProcessPointer>{stop});
}

TEST_F(EventSetProcessesTest, print) {
    struct {
        ProcessPointer term;
        char const* full;
        char const* abbreviated;
        char const* symbol;
        char const* description;
    } const rows[] = {
        {run({b, a}), "RUN({a, b})", "RUN(…) ", "RUN", "Run over event set:\n    {a, b}"},
        {chaos({b, a}), "CHAOS({a, b})", "CHAOS(…) ", "CHAOS", "Chaos over event set:\n    {a, b}"},
        {run({}), "RUN({})", "RUN(…) ", "RUN", "Run over event set:\n    {}"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
        EXPECT_EQ(text(*row.term, true), row.abbreviated);
        EXPECT_EQ(operator_text(*row.term), row.symbol);
        EXPECT_EQ(description(*row.term), row.description);
    }
    EXPECT_EQ(text(*prefix(a, run({a}))), "a -> RUN({a})");
}

TEST_F(EventSetProcessesTest, questions_that_end_the_program) {
    for (ProcessPointer const& term : {run({a}), chaos({a})}) {
        EXPECT_EXIT(term->argument(0), testing::KilledBySignal(SIGABRT), "");
        EXPECT_EXIT(term->high_level_formats({}), testing::KilledBySignal(SIGABRT), "");
    }
    EXPECT_EXIT(chaos({a})->is_commutative(), testing::KilledBySignal(SIGABRT),
                "Unary operator cannot be commutative");
    EXPECT_EXIT(EventSetPrefixProcess({a}, stop).is_commutative(), testing::KilledBySignal(SIGABRT),
                "");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
