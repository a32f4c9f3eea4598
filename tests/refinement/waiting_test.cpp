#include "refinement/waiting.h"
#include "tests/refinement/random_systems.h"

#include <gtest/gtest.h>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::no_event;
using ProcessCompiler::tick;
using StateSpace::Machine;
using namespace StateSpace::Testing;

constexpr unsigned c = b + 1;

NamedProcessSource const source;

using Wanteds = std::vector<Wanted>;

/// By slot. The machine comes to one deadlock only.
std::vector<Wanteds> wanted_in_deadlock(ProcessPointer const& process,
                                        std::vector<std::uint32_t> const& cycle) {
    Answer const answer = deadlock_free(process, source);
    EXPECT_EQ(answer.evidence.reason, Reason::deadlock);
    auto const waiting = waiting_in(answer.machine, answer.evidence.end);
    std::vector<Wanteds> wanted;
    for (Waiting const& own : waiting) {
        EXPECT_EQ(own.slot, wanted.size());
        EXPECT_EQ(own.slot_state, answer.evidence.end.slots[own.slot]);
        wanted.push_back(own.wanted);
    }
    EXPECT_EQ(waiting_cycle(waiting), cycle);
    return wanted;
}

/// One event of both is joined, by another name outside; all else each does by itself.
FormatMaker joined_on(unsigned event, unsigned outside, std::vector<unsigned> const& alone) {
    std::vector<PlainRule> rules{{outside, 0, {{0, event}, {1, event}}}};
    for (unsigned const own : alone) {
        rules.push_back({own, 0, {{0, own}}});
        rules.push_back({own, 0, {{1, own}}});
    }
    return always({format_of({0, 1}, rules)});
}

/// Philosopher i stands in slot i, fork i in slot `count` + i. Takes with one hand, then the other, and
/// puts both down.
ProcessPointer table(unsigned count) {
    auto const take = [=](unsigned philosopher, unsigned fork) {
        return a + (philosopher * count + fork) * 2;
    };
    auto const put = [=](unsigned philosopher, unsigned fork) {
        return take(philosopher, fork) + 1;
    };
    std::vector<ProcessPointer> leaves;
    std::vector<PlainRule> rules;
    std::vector<unsigned> active;
    for (unsigned own = 0; own < count; ++own) {
        unsigned const next = (own + 1) % count;
        leaves.push_back(leaf("philosopher " + std::to_string(own), {{{take(own, own), 1}},
                                                                     {{take(own, next), 2}},
                                                                     {{put(own, own), 3}},
                                                                     {{put(own, next), 0}}}));
        for (unsigned const fork : {own, next}) {
            for (unsigned const event : {take(own, fork), put(own, fork)}) {
                rules.push_back({event, 0, {{own, event}, {count + fork, event}}});
            }
        }
    }
    for (unsigned own = 0; own < count; ++own) {
        unsigned const before = (own + count - 1) % count;
        leaves.push_back(
            leaf("fork " + std::to_string(own), {{{take(own, own), 1}, {take(before, own), 2}},
                                                 {{put(own, own), 0}},
                                                 {{put(before, own), 0}}}));
    }
    for (unsigned argument = 0; argument < 2 * count; ++argument) {
        active.push_back(argument);
    }
    return construct("table", leaves, always({format_of(active, rules)}));
}

TEST(Waiting, PhilosophersWaitForForksAndForksForPhilosophers) {
    // Each has its own fork and wants the next: philosopher 0, fork 1, philosopher 1, fork 2, …
    auto const wanted = wanted_in_deadlock(table(3), {0, 4, 1, 5, 2, 3});
    ASSERT_EQ(wanted.size(), 6U);
    auto const take = [](unsigned philosopher, unsigned fork) {
        return a + (philosopher * 3 + fork) * 2;
    };
    EXPECT_EQ(wanted[2], (Wanteds{{take(2, 0), take(2, 0), {3}}}));
    EXPECT_EQ(wanted[3], (Wanteds{{take(0, 0) + 1, take(0, 0) + 1, {0}}}));
}

TEST(Waiting, IsForWhoeverIsMissing) {
    Rows const wants_a{{{a, 1}}, {}};
    Rows const wants_b{{{b, 1}}, {}};
    Rows const wants_both{{{a, 1}, {b, 1}}, {}};
    Rows const ended{{{tick, 1}}, {}};
    Rows const only_c{{{c, 1}}, {}};
    auto const both_joined = always({format_of({0, 1}, {{a, 0, {{0, a}, {1, a}}},
                                                        {b, 0, {{0, b}, {1, b}}},
                                                        {tick, 0, {{0, tick}, {1, tick}}},
                                                        {c, 0, {{1, c}}}})});
    struct {
        char const* what;
        ProcessPointer process;
        std::vector<Wanteds> wanted;
        std::vector<std::uint32_t> cycle;
    } const rows[] = {
        {"each wants what the other does not",
         construct("P", {leaf("l", wants_a), leaf("r", wants_b)}, both_joined),
         {{{a, a, {1}}}, {{b, b, {0}}}},
         {0, 1}},
        {"one that can never do it",
         construct("P", {leaf("l", wants_a), leaf("r", only_c)}, both_joined),
         {{{a, a, {1}}}, {}},
         {}},
        {"one that wants to end and one that does not",
         construct("P", {leaf("l", wants_b), leaf("r", ended)}, both_joined),
         {{{b, b, {1}}}, {{tick, tick, {0}}}},
         {0, 1}},
        {"one that has ended, silently",
         construct("P", {leaf("l", wants_a), leaf("r", {{{b, 1}}, {{tick, 2}}, {}})},
                   always({format_of({0, 1}, {{b, 0, {{1, b}}},
                                              {a, 0, {{0, a}, {1, a}}},
                                              {ProcessCompiler::tau, 0, {{1, tick}}}})})),
         {{{a, a, {1}}}, {}},
         {}},
        {"joined under another name outside",
         construct("P", {leaf("l", wants_a), leaf("r", wants_b)}, joined_on(a, c, {})),
         {{{c, a, {1}}}, {{no_event, b, {}}}},
         {}},
        {"linked: what is joined is silent",
         construct("P", {leaf("l", wants_a), leaf("r", wants_a)},
                   always({format_of({0, 1}, {{ProcessCompiler::tau, 0, {{0, a}, {1, b}}}})})),
         {{{ProcessCompiler::tau, a, {1}}}, {{no_event, a, {}}}},
         {}},
        {"two names outside, one partner each, and an event that no rule has",
         construct("P", {leaf("l", wants_both), leaf("m", {{}}), leaf("r", {{}})},
                   always({format_of({0, 1, 2},
                                     {{c, 0, {{0, a}, {1, a}}}, {c + 1, 0, {{0, a}, {2, a}}}})})),
         {{{c, a, {1}}, {c + 1, a, {2}}, {no_event, b, {}}}, {}, {}},
         {}},
        {"any of two partners would do, both together need not",
         construct("P", {leaf("l", wants_a), leaf("m", {{}}), leaf("r", {{}})},
                   always({format_of({0, 1, 2}, {{a, 0, {{0, a}, {1, a}, {2, a}}},
                                                 {a, 0, {{0, a}, {2, a}}},
                                                 {a, 0, {{0, a}, {1, a}}}})})),
         {{{a, a, {1}}, {a, a, {2}}}, {}, {}},
         {}},
        {"a construct above lets through nothing",
         construct(
             "Q",
             {construct("P", {leaf("l", wants_a), leaf("r", wants_b)}, joined_on(c, c, {a, b}))},
             always({format_of({0}, {{tick, 0, {{0, tick}}}, {c, 0, {{0, c}}}})})),
         {{{no_event, a, {}}}, {{no_event, b, {}}}},
         {}},
        {"a way inside that lacks two, beside one that lacks another",
         construct(
             "Q",
             {leaf("l", wants_a),
              construct("P",
                        {leaf("m", wants_a), leaf("n", {{}}), leaf("o", {{}}), leaf("r", {{}})},
                        always({format_of({0, 1, 2, 3},
                                          {{a, 0, {{0, a}, {1, a}, {2, a}}}, {a, 0, {{3, a}}}})}))},
             joined_on(a, a, {})),
         {{{a, a, {4}}, {a, a, {2, 3}}}, {{a, a, {2, 3}}}, {}, {}, {}},
         {}},
        {"a partner below a construct, under another name",
         construct("Q",
                   {leaf("l", wants_a),
                    construct("P", {leaf("m", wants_b), leaf("r", wants_a)}, joined_on(b, a, {}))},
                   joined_on(a, a, {})),
         {{{a, a, {2}}}, {{a, b, {2}}}, {{no_event, a, {}}}},
         {}},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(wanted_in_deadlock(row.process, row.cycle), row.wanted) << row.what;
    }
}

/// What may happen depends on where the constructs are: behind the c, a is for nobody any more, and
/// there are other leaves.
TEST(Waiting, IsWithinTheConfiguration) {
    ProcessPointer const process = construct(
        "P", {leaf("l", {{{c, 1}}, {{a, 1}}}), leaf("m", {{{a, 0}}}), leaf("r", {{{b, 0}}})},
        always({format_of({0, 1}, {{a, 0, {{0, a}, {1, a}}}, {c, 1, {{0, c}}}}),
                format_of({0, 2}, {{b, 1, {{0, b}, {2, b}}}, {a, 1, {{0, a}, {1, a}}}})}));
    EXPECT_EQ(wanted_in_deadlock(process, {}),
              (std::vector<Wanteds>{{{no_event, a, {}}}, {{b, b, {0}}}}));
}

TEST(Waiting, OfAStateThatCanGoOnNothingIsMissing) {
    ProcessPointer const process =
        construct("P", {leaf("l", {{{a, 0}}}), leaf("r", {{{b, 0}}, {{a, 1}}})},
                  always({format_of({0, 1}, {{a, 0, {{0, a}, {1, a}}}, {b, 0, {{1, b}}}})}));
    Answer const answer = never(process, BitSet{b}, source);
    auto const waiting = waiting_in(answer.machine, answer.evidence.steps.back().source);
    ASSERT_EQ(waiting.size(), 2U);
    EXPECT_EQ(waiting[0].wanted, (Wanteds{{a, a, {1}}}));
    EXPECT_EQ(waiting[1].wanted, (Wanteds{{b, b, {}}}));
}

TEST(Waiting, NobodyWhereThereIsNoMachine) {
    Answer const answer = deadlock_free(term_of({{}}, "P"), source);
    EXPECT_TRUE(waiting_in(answer.machine, answer.evidence.end).empty());
    EXPECT_TRUE(waiting_cycle({}).empty());
}

/// Of cycles the shortest, of these the least; slots that only lead to it are not on it.
TEST(Waiting, GoesRoundAShortestWay) {
    struct {
        std::vector<std::vector<std::uint32_t>> missing; // by slot
        std::vector<std::uint32_t> cycle;
    } const rows[] = {
        {{{1}, {2}, {}}, {}},
        {{{1}, {2}, {1}}, {1, 2}},
        {{{1}, {2}, {0}}, {0, 1, 2}},
        {{{2}, {0}, {1}}, {0, 2, 1}},
        {{{1}, {2}, {0, 3}, {2}}, {2, 3}},
        {{{2, 3}, {0}, {1}, {1}}, {0, 2, 1}},
        {{{1}, {0}, {3}, {2}}, {0, 1}},
    };
    for (auto const& row : rows) {
        std::vector<Waiting> waiting;
        for (auto const& missing : row.missing) {
            waiting.push_back(
                {{0, 0}, static_cast<std::uint32_t>(waiting.size()), {{a, a, missing}}});
        }
        EXPECT_EQ(waiting_cycle(waiting), row.cycle);
    }
}

/// Twelve partners, each of which any of three could be, in 3^12 ways: some are told.
TEST(Waiting, ToldWaysAreBounded) {
    std::vector<ProcessPointer> groups{leaf("l", {{{a, 0}}})};
    Participants all{{0, a}};
    std::vector<unsigned> active{0};
    for (unsigned group = 1; group <= 12; ++group) {
        groups.push_back(construct(
            "group " + std::to_string(group), {leaf("x", {{}}), leaf("y", {{}}), leaf("z", {{}})},
            always(
                {format_of({0, 1, 2}, {{a, 0, {{0, a}}}, {a, 0, {{1, a}}}, {a, 0, {{2, a}}}})})));
        all.emplace_back(group, a);
        active.push_back(group);
    }
    auto const wanted =
        wanted_in_deadlock(construct("P", groups, always({format_of(active, {{a, 0, all}})})), {});
    ASSERT_EQ(wanted[0].size(), most_ways);
    EXPECT_EQ(wanted[0].front().missing,
              (std::vector<std::uint32_t>{1, 4, 7, 10, 13, 16, 19, 22, 25, 28, 31, 34}));
}

} // namespace
} // namespace Calder::Refinement::Testing
