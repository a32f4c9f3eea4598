#include "state_space/memory.h"
#include "tests/refinement/random_systems.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <utility>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::tau;
using StateSpace::Outcome;
using namespace StateSpace::Testing;

NamedProcessSource const source;

/// Some rings side by side, all different, of two to the `count` states or more.
ProcessPointer rings(unsigned count, unsigned size = 2) {
    std::vector<ProcessPointer> leaves;
    for (unsigned i = 0; i < count; ++i) {
        leaves.push_back(ring("ring" + std::to_string(i), size, a + i));
    }
    return construct("rings", leaves);
}

Rows chain(unsigned length) {
    Rows rows(length);
    for (unsigned state = 0; state + 1 < length; ++state) {
        rows[state].emplace_back(a, state + 1);
    }
    return rows;
}

TEST(Limits, OnStatesCountForEachSide) {
    ProcessPointer const machine = rings(4);
    for (StateNumber const most : {1U, 15U, 16U}) {
        QuestionOptions options;
        options.max_states = most;
        Answer const answer = deadlock_free(machine, source, options);
        EXPECT_EQ(answer.verdict, most == 16 ? Verdict::holds : Verdict::undecided);
        EXPECT_EQ(answer.outcome, most == 16 ? Outcome::complete : Outcome::state_limit);
        EXPECT_EQ(answer.state_count, most);
    }
    // The other side alone has too many.
    QuestionOptions options;
    options.max_states = 5;
    Rows many = chain(3);
    for (unsigned i = 0; i < 7; ++i) {
        many[0].emplace_back(tau, 3 + i);
        many.emplace_back();
    }
    EXPECT_EQ(refinement(term_of(many, "A"), term_of(chain(3), "C"), Model::traces, source, options)
                  .outcome,
              Outcome::state_limit);
}

TEST(Limits, WhatIsFoundBeforeALimitDecides) {
    QuestionOptions options;
    options.max_states = 600;
    EXPECT_EQ(never(rings(16), BitSet{a + 3}, source, options).verdict, Verdict::fails);
    EXPECT_EQ(never(rings(16), BitSet{a + 40}, source, options).outcome, Outcome::state_limit);
}

TEST(Limits, OnMemoryAndTheWishOfWhoWatches) {
    for (bool const by_machine : {true, false}) {
        QuestionOptions options;
        options.by_machine = by_machine;
        ProcessPointer const process = by_machine ? rings(22) : term_of(chain(300'000), "chain");
        unsigned looks = 0;
        options.progress = [&looks](StateSpace::Progress const&) { return ++looks < 5; };
        Answer const interrupted = divergence_free(process, source, options);
        EXPECT_EQ(interrupted.verdict, Verdict::undecided);
        EXPECT_EQ(interrupted.outcome, Outcome::interrupted);
        EXPECT_EQ(looks, 5U);
        options.progress = nullptr;
        options.max_memory = StateSpace::resident_bytes() + (std::uint64_t{4} << 20);
        EXPECT_EQ(divergence_free(process, source, options).outcome, Outcome::memory_limit);
    }
}

/// What the search for something nearer meets takes nothing from what was found.
TEST(Limits, WhatIsFoundIsShownThoughALimitIsNear) {
    Rows rows = chain(3'000);
    rows[2].emplace_back(b, 0);
    rows[2].emplace_back(a, 2);
    for (unsigned state = 3; state + 1 < rows.size(); ++state) {
        rows[state] = {{tau, state + 1}};
    }
    for (bool const by_machine : {true, false}) {
        ProcessPointer const process =
            by_machine ? machine_over(rows, "chain") : term_of(rows, "chain");
        for (StateNumber const most : {4U, 5U, 40U, 2'000U}) {
            QuestionOptions options;
            options.by_machine = by_machine;
            options.max_states = most;
            Answer const event = refinement(term_of({{{a, 0}, {tau, 1}}, {}}, "A"), process,
                                            Model::failures_divergences, source, options);
            EXPECT_EQ(event.outcome, Outcome::complete) << most;
            EXPECT_EQ(event.evidence.reason, Reason::event) << most;
            EXPECT_EQ(event.evidence.steps.size(), 3U) << most;
            Rows choice = rows;
            choice[0] = {{tau, 1}, {tau, 2}};
            choice[1] = {{a, 1}};
            choice[2] = {{tau, 3}, {b, 0}};
            Answer const runs = deterministic(by_machine ? machine_over(choice, "choice")
                                                         : term_of(choice, "choice"),
                                              source, options);
            EXPECT_EQ(runs.outcome, Outcome::complete) << most;
            EXPECT_EQ(runs.evidence.steps.size(), 2U) << most;
            EXPECT_EQ(runs.evidence.other.size(), 1U) << most;
        }
    }
}

TEST(Limits, WhatIsFoundIsToldThoughItsEvidenceIsNot) {
    std::vector<ProcessPointer> leaves;
    for (unsigned i = 0; i < 18; ++i) {
        leaves.push_back(leaf("once" + std::to_string(i), {{{tau, 1}}, {{a + i, 1}}}));
    }
    ProcessPointer const process = construct("side by side", leaves);
    bool is_told = false;
    for (unsigned most_looks = 1; !is_told && most_looks < 4'000; ++most_looks) {
        unsigned looks = 0;
        QuestionOptions options;
        options.progress = [&](StateSpace::Progress const&) { return ++looks < most_looks; };
        Answer const answer = refinement(term_of({{{a, 0}}}, "A"), process,
                                         Model::failures_divergences, source, options);
        is_told = answer.verdict == Verdict::fails;
        if (is_told) {
            EXPECT_EQ(answer.outcome, Outcome::interrupted);
            EXPECT_TRUE(answer.evidence.steps.empty());
            EXPECT_EQ(answer.evidence.reason, Reason::none);
        }
    }
    EXPECT_TRUE(is_told);
}

/// Loops are told before everything is explored.
/// One closure holds the whole of the abstract side: the search for loops in it must not keep who
/// watches waiting. Processor time, as others may keep both waiting.
TEST(Limits, WhoWatchesIsAskedWhileLoopsAreSearchedFor) {
    constexpr unsigned length = 100'000;
    Rows silent(length);
    for (unsigned state = 0; state < length; ++state) {
        for (unsigned next = state + 1; next < std::min(state + 30, length); ++next) {
            silent[state].emplace_back(tau, next);
        }
    }
    ProcessPointer const abstract = term_of(silent, "A");
    QuestionOptions options;
    std::clock_t const start = std::clock();
    std::clock_t last = start;
    std::clock_t longest = 0;
    options.progress = [&](StateSpace::Progress const&) {
        longest = std::max(longest, std::clock() - std::exchange(last, std::clock()));
        return true;
    };
    EXPECT_EQ(
        refinement(abstract, term_of(chain(1), "C"), Model::failures_divergences, source, options)
            .verdict,
        Verdict::holds);
    longest = std::max(longest, std::clock() - last);
    EXPECT_LT(longest * 10, std::clock() - start);
}

TEST(Limits, ALoopNearTheStartIsFoundWithinALimit) {
    std::vector<ProcessPointer> leaves{leaf("loop", {{{tau, 1}}, {{tau, 0}}})};
    for (unsigned i = 0; i < 16; ++i) {
        leaves.push_back(ring("ring" + std::to_string(i), 2, a + i));
    }
    QuestionOptions options;
    options.max_states = 20'000;
    Answer const answer = divergence_free(construct("rings", leaves), source, options);
    EXPECT_EQ(answer.verdict, Verdict::fails);
    EXPECT_TRUE(answer.evidence.steps.empty());
    EXPECT_EQ(answer.evidence.loop.size(), 2U);
}

/// What a machine meets on the way, and cannot flatten, ends the machine and not the question.
TEST(Limits, AMachineThatCannotGoOnIsLeftForTerms) {
    NamedProcessSource endless;
    ProcessPointer const p = endless.reference("P");
    endless.define("P", construct("Endless", {ring("a", 2, a), p}));
    ProcessPointer const process =
        construct("C", {ring("a", 2, a), p},
                  always({format_of({0}, {{b, 1, {{0, a}}}}), format_of({1}, {{b, 1, {{1, a}}}})}));
    Answer const answer = deadlock_free(process, endless);
    EXPECT_EQ(answer.verdict, Verdict::fails); // by its transitions, of which it has none
    EXPECT_FALSE(answer.machine.machine);
    EXPECT_EQ(answer.concrete_without_machine.reason, "it nests too deeply for the stack");
}

/// With nodes in the states, and beside them.
TEST(Limits, StatesMayGrowWiderOnTheWay) {
    ProcessPointer const machine = growing_machine();
    QuestionOptions options;
    options.max_states = 3'000;
    for (Rows const& abstract :
         {Rows{{{a, 0}, {b, 0}}}, Rows{{{a, 1}, {b, 0}}, {{a, 1}, {b, 0}}}}) {
        Answer const answer =
            refinement(term_of(abstract, "A"), machine, Model::traces, source, options);
        EXPECT_EQ(answer.outcome, Outcome::state_limit);
    }
    // Up to where b has led through all formats: what is found is found in wide states, too.
    Rows const twice{{{a, 0}, {b, 1}}, {{a, 1}, {b, 2}}, {{a, 2}}};
    Answer const answer = refinement(term_of(twice, "A"), machine, Model::traces, source);
    ASSERT_EQ(answer.verdict, Verdict::fails);
    std::vector<unsigned> events;
    for (EvidenceStep const& step : answer.evidence.steps) {
        events.push_back(step.event);
    }
    EXPECT_EQ(events, (Trace{a, b, a, b, a, b}));
    EXPECT_EQ(answer.evidence.end.slots.size(), 7U);
    // As the abstract side it has this trace, but not without its last a.
    Rows rows(events.size() + 1);
    for (unsigned i = 0; i < events.size(); ++i) {
        rows[i].emplace_back(events[i], i + 1);
    }
    ProcessPointer const trace = term_of(rows, "C");
    EXPECT_EQ(refinement(machine, trace, Model::traces, source).verdict, Verdict::holds);
    rows[4].emplace_back(b, 5);
    EXPECT_EQ(refinement(machine, term_of(rows, "D"), Model::traces, source).evidence.event, b);
}

} // namespace
} // namespace Calder::Refinement::Testing
