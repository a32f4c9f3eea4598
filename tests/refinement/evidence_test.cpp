#include "tests/refinement/random_systems.h"

#include <gtest/gtest.h>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using StateSpace::Participant;
using namespace StateSpace::Testing;

constexpr unsigned c = b + 1;

NamedProcessSource const source;

/// a of one and b of the other are joined and silent; so are both ticks; c each by itself.
ProcessPointer linked(ProcessPointer const& left, ProcessPointer const& right) {
    return construct("linked", {left, right},
                     always({format_of({0, 1}, {{tau, 0, {{0, a}, {1, b}}},
                                                {tau, 0, {{0, tau}}},
                                                {tau, 0, {{1, tau}}},
                                                {tick, 0, {{0, tick}, {1, tick}}},
                                                {c, 0, {{0, c}}},
                                                {c, 0, {{1, c}}}})}));
}

/// b is c on the outside, c silent.
ProcessPointer renamed_and_hidden(ProcessPointer const& inner) {
    ProcessPointer const renamed = construct(
        "renamed", {inner},
        always({format_of({0}, {{tau, 0, {{0, tau}}}, {a, 0, {{0, a}}}, {c, 0, {{0, b}}}})}));
    return construct(
        "hidden", {renamed},
        always({format_of({0}, {{tau, 0, {{0, tau}}}, {a, 0, {{0, a}}}, {tau, 0, {{0, c}}}})}));
}

struct PlainStep {
    bool operator==(PlainStep const&) const = default;

    unsigned event;
    std::vector<Participant> participants;
    std::vector<unsigned> inner;
};

std::vector<PlainStep> plain(std::vector<EvidenceStep> const& steps) {
    std::vector<PlainStep> result;
    for (EvidenceStep const& step : steps) {
        result.push_back({step.event, step.participants, step.inner_events});
    }
    return result;
}

Trace events(std::vector<EvidenceStep> const& steps) {
    Trace result;
    for (EvidenceStep const& step : steps) {
        result.push_back(step.event);
    }
    return result;
}

std::vector<SlotState> states_of(RunState const& state) {
    return state.slots;
}

TEST(Evidence, NamesWhoTakesPartAndWhatBecameSilent) {
    // c of the left, then a joined with b, then the right goes on silently by itself, and stops.
    ProcessPointer const process =
        linked(leaf("left", {{{c, 1}}, {{a, 2}}, {}}), leaf("right", {{{b, 1}}, {{tau, 2}}, {}}));
    Answer const answer = deadlock_free(process, source);
    ASSERT_EQ(answer.evidence.reason, Reason::deadlock);
    EXPECT_EQ(plain(answer.evidence.steps), (std::vector<PlainStep>{
                                                {c, {{0, c}}, {}},
                                                {tau, {{0, a}, {1, b}}, {a, b}},
                                                {tau, {{1, tau}}, {}},
                                            }));
    ASSERT_TRUE(answer.machine.machine);
    EXPECT_FALSE(answer.evidence.end.term);
    auto const& steps = answer.evidence.steps;
    std::uint32_t const left = steps[0].source.slots[0].leaf;
    std::uint32_t const right = steps[0].source.slots[1].leaf;
    EXPECT_NE(left, right);
    EXPECT_EQ(states_of(steps[2].source), (std::vector<SlotState>{{left, 2}, {right, 1}}));
    EXPECT_EQ(states_of(answer.evidence.end), (std::vector<SlotState>{{left, 2}, {right, 2}}));
    EXPECT_EQ(steps[1].source.number, steps[0].target);
    EXPECT_EQ(steps[2].target, answer.evidence.end.number);
}

TEST(Evidence, TellsTheNameThatWasHidden) {
    ProcessPointer const process = renamed_and_hidden(leaf("leaf", {{{a, 1}}, {{b, 1}, {tau, 0}}}));
    Answer const answer = divergence_free(process, source);
    ASSERT_EQ(answer.evidence.reason, Reason::divergence);
    EXPECT_EQ(plain(answer.evidence.steps), (std::vector<PlainStep>{{a, {{0, a}}, {}}}));
    EXPECT_EQ(plain(answer.evidence.loop), (std::vector<PlainStep>{{tau, {{0, b}}, {c}}}));
    EXPECT_EQ(answer.evidence.loop[0].target, answer.evidence.end.number);
}

/// Of two rules for one event, the one that has exactly those participants.
TEST(Evidence, TellsWhatAllParticipantsDid) {
    ProcessPointer const process = construct(
        "alone or together", {leaf("left", {{{a, 1}}, {}}), leaf("right", {{{b, 1}, {c, 0}}, {}})},
        always({format_of({0, 1},
                          {{tau, 0, {{0, a}}}, {tau, 0, {{0, a}, {1, b}}}, {c, 0, {{1, c}}}})}));
    EXPECT_EQ(plain(deadlock_free(process, source).evidence.steps),
              (std::vector<PlainStep>{{tau, {{0, a}, {1, b}}, {a, b}}}));
}

/// The left could have hidden its a, as c; but the right took part, too.
TEST(Evidence, TellsNothingOfRulesThatLedNowhere) {
    ProcessPointer const twice =
        construct("a or hidden c", {leaf("left", {{{a, 1}}, {}})},
                  always({format_of({0}, {{a, 0, {{0, a}}}, {c, 0, {{0, a}}}})}));
    ProcessPointer const left = construct(
        "hidden", {twice}, always({format_of({0}, {{a, 0, {{0, a}}}, {tau, 0, {{0, c}}}})}));
    ProcessPointer const process = construct(
        "linked", {left, leaf("right", {{{b, 1}, {c, 0}}, {}})},
        always({format_of({0, 1},
                          {{tau, 0, {{0, tau}}}, {tau, 0, {{0, a}, {1, b}}}, {c, 0, {{1, c}}}})}));
    EXPECT_EQ(plain(deadlock_free(process, source).evidence.steps),
              (std::vector<PlainStep>{{tau, {{0, a}, {1, b}}, {a, b}}}));
}

TEST(Evidence, TermsHaveNoParticipantsAndStandForTheirStates) {
    QuestionOptions options;
    options.by_machine = false;
    ProcessPointer const process = term_of({{{a, 1}}, {}}, "P");
    Answer const answer = deadlock_free(process, source, options);
    EXPECT_EQ(plain(answer.evidence.steps), (std::vector<PlainStep>{{a, {}, {}}}));
    EXPECT_FALSE(answer.machine.machine);
    EXPECT_TRUE(answer.concrete_without_machine.reason.empty());
    EXPECT_EQ(answer.evidence.steps.front().source.term, process);
    ASSERT_TRUE(answer.evidence.end.term);
    Answer const at_end = deadlock_free(answer.evidence.end.term, source, options);
    EXPECT_EQ(at_end.verdict, Verdict::fails);
    EXPECT_TRUE(at_end.evidence.steps.empty());
}

TEST(Evidence, WhatEndsTheQuestionSoonestIsShown) {
    // After a it refuses everything; b, at the start, takes one step as well, and comes later.
    Rows const abstract{{{a, 1}, {c, 0}}, {{a, 1}}};
    struct {
        char const* what;
        Rows concrete;
        Reason reason;
        std::size_t steps;
    } const rows[] = {
        {"a refusal at the start before an event", {{{b, 0}}}, Reason::refusal, 0},
        {"an event before a refusal behind as many steps",
         {{{a, 1}, {b, 0}, {c, 0}}, {}},
         Reason::event,
         1},
        {"a refusal before an event of the same level",
         {{{a, 1}, {c, 2}}, {{b, 0}, {a, 1}}, {}},
         Reason::refusal,
         1},
        {"a loop at the start before an event", {{{tau, 0}, {b, 0}}}, Reason::divergence, 0},
        {"a loop on the level of an event, behind it",
         {{{a, 1}, {c, 2}}, {{b, 0}, {a, 1}}, {{tau, 2}}},
         Reason::divergence,
         1},
        {"a loop at the start that closes behind an event",
         {{{tau, 1}, {c, 4}}, {{tau, 2}}, {{tau, 3}}, {{tau, 0}}, {{a, 4}, {b, 4}}},
         Reason::divergence,
         0},
        {"a refusal before a loop behind it",
         {{{a, 1}, {c, 0}}, {{b, 1}, {a, 2}}, {{tau, 2}}},
         Reason::event,
         2},
    };
    for (auto const& row : rows) {
        Answer const answer = refinement(term_of(abstract, "A"), term_of(row.concrete, "C"),
                                         Model::failures_divergences, source);
        EXPECT_EQ(answer.evidence.reason, row.reason) << row.what;
        EXPECT_EQ(answer.evidence.steps.size(), row.steps) << row.what;
    }
}

/// Choices made beforehand lead to the state that does a; that which does b instead is far. But a is
/// done where it need not be, at once.
TEST(Evidence, RunsThatDifferSoonerAreFound) {
    Rows const rows{{{c, 1}}, {{a, 1}, {tau, 2}, {tau, 3}}, {{a, 2}}, {{tau, 4}}, {{tau, 5}},
                    {{b, 5}}};
    Answer const answer = deterministic(term_of(rows, "P"), source);
    ASSERT_EQ(answer.evidence.reason, Reason::nondeterminism);
    EXPECT_EQ(events(answer.evidence.steps), (Trace{c, a}));
    EXPECT_EQ(events(answer.evidence.other), (Trace{c, tau, tau, tau}));
    EXPECT_EQ(answer.evidence.event, a);
    EXPECT_EQ(answer.evidence.offered, (std::vector<unsigned>{b}));
    EXPECT_FALSE(answer.evidence.other_performs);
}

TEST(Evidence, IsTheFirstOfItsLevel) {
    Rows const abstract{{{a, 0}, {c, 0}}};
    Answer const event = refinement(
        term_of(abstract, "A"), term_of({{{a, 0}, {c, 1}, {b, 0}, {c + 1, 0}}, {{c + 2, 0}}}, "C"),
        Model::failures_divergences, source);
    EXPECT_EQ(event.evidence.event, b);
    // The loops lead to later ones, which a search for loops meets first.
    struct {
        Rows rows;
        std::size_t steps;
        std::size_t loop;
    } const loops[] = {
        {{{{tau, 1}}, {{tau, 0}, {tau, 2}}, {{tau, 2}}}, 0, 2},
        {{{{tau, 1}}, {{tau, 2}}, {{tau, 3}}, {{tau, 1}, {tau, 3}}}, 1, 3},
    };
    for (auto const& row : loops) {
        Answer const answer = divergence_free(term_of(row.rows, "P"), source);
        EXPECT_EQ(answer.evidence.steps.size(), row.steps);
        EXPECT_EQ(answer.evidence.loop.size(), row.loop);
    }
}

TEST(Evidence, IsTheSameEveryTime) {
    Random random(7);
    for (unsigned round = 0; round < 50; ++round) {
        ProcessPointer const concrete = random_machine(random);
        ProcessPointer const abstract = term_of(random_rows(random, 4), "A");
        Answer const first = refinement(abstract, concrete, Model::failures_divergences, source);
        Answer const second = refinement(abstract, concrete, Model::failures_divergences, source);
        EXPECT_EQ(plain(first.evidence.steps), plain(second.evidence.steps));
        EXPECT_EQ(plain(first.evidence.loop), plain(second.evidence.loop));
        EXPECT_EQ(first.evidence.end.number, second.evidence.end.number);
    }
}

} // namespace
} // namespace Calder::Refinement::Testing
