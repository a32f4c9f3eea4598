#include "state_space/memory.h"
#include "tests/refinement/random_systems.h"

#include <gtest/gtest.h>

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

/// Loops are told before everything is explored.
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

} // namespace
} // namespace Calder::Refinement::Testing
