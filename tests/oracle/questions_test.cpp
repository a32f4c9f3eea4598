#include "csp/hide_operator.h"
#include "process_compiler/operator_process.h"
#include "refinement/questions.h"
#include "refinement/waiting.h"
#include "state_space/memory.h"
#include "tests/oracle/deliberate_differences.h"
#include "tests/oracle/library_term.h"
#include "tests/support/seeds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

namespace Calder::Oracle {
namespace {

using namespace ProcessCompiler;
using namespace Refinement;

/// Beyond this, a question is let be: recursion may grow without end.
constexpr StateSpace::StateNumber most_states = 300;
constexpr std::uint64_t memory_for_one_question = std::uint64_t{50} << 20;
constexpr int most_looks = 10;

/// A question by both engines, as far as both decide it.
struct Asked {
    Answer machine;
    Answer terms;

    template <typename Question> explicit Asked(Question const& question) {
        for (Answer* const answer : {&machine, &terms}) {
            QuestionOptions options;
            int looks = 0;
            options.by_machine = answer == &machine;
            options.max_states = most_states * (options.by_machine ? 20 : 1);
            options.max_memory = StateSpace::resident_bytes() + memory_for_one_question;
            options.progress = [&](StateSpace::Progress const&) { return ++looks < most_looks; };
            *answer = question(options);
        }
    }

    bool is_decided() const {
        return machine.verdict != Verdict::undecided && terms.verdict != Verdict::undecided;
    }
};

/// The machine is strongly bisimilar to the process: what is decided, why, and after how many steps is
/// the same. But when a loop is looked for depends on the number of states, and in which run
/// nondeterminism shows on their order.
void expect_alike(Asked const& asked, char const* what) {
    EXPECT_EQ(asked.machine.verdict, asked.terms.verdict) << what;
    if (asked.machine.outcome != StateSpace::Outcome::complete ||
        asked.terms.outcome != StateSpace::Outcome::complete) {
        return; // decided, but a limit was met before the evidence was put together
    }
    Evidence const& machine = asked.machine.evidence;
    Evidence const& terms = asked.terms.evidence;
    for (Reason const reason : {machine.reason, terms.reason}) {
        if (reason == Reason::divergence || reason == Reason::nondeterminism) {
            return;
        }
    }
    EXPECT_EQ(machine.steps.size(), terms.steps.size()) << what;
}

/// Nothing can happen, so whatever a part would do is blocked or lacks somebody else.
void expect_nobody_can_go_on(Answer const& answer) {
    auto const waiting = waiting_in(answer.machine, answer.evidence.end);
    EXPECT_EQ(waiting.size(), answer.evidence.end.slots.size());
    for (Waiting const& own : waiting) {
        for (Wanted const& wanted : own.wanted) {
            EXPECT_EQ(wanted.missing.empty(), wanted.event == no_event);
            EXPECT_EQ(std::count(wanted.missing.begin(), wanted.missing.end(), own.slot), 0);
        }
    }
}

TEST(Questions, are_answered_alike_by_both_engines) {
    Testing::SeedRange const seeds = Testing::one_of(4, Testing::seeds_from_environment(6000));
    unsigned decided = 0;
    unsigned by_machine = 0;
    unsigned failing = 0;
    unsigned deadlocks = 0;
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        NamedProcessSource source;
        Oracle::Model const drawn = random_model(seed, 8, false);
        ProcessPointer const process = library_model(drawn, source);
        if (has_deliberate_difference(drawn) ||
            !StateSpace::make_term_graph(process, source).refused.empty()) {
            continue; // terms may double at each step, and one alone take all memory
        }
        ProcessPointer const hidden =
            new OperatorProcess(new CSP::HideOperator(BitSet{first_visible_event}), process);
        ProcessPointer const relatives[] = {hidden, source.reference("N0"), process};
        ProcessPointer const& other = relatives[seed % 3];
        auto const judge = [&](char const* what, auto const& question) {
            Asked const asked(question);
            if (asked.is_decided()) {
                ++decided;
                by_machine += asked.machine.machine.machine ? 1 : 0;
                failing += asked.machine.verdict == Verdict::fails ? 1 : 0;
                expect_alike(asked, what);
                if (asked.machine.evidence.reason == Reason::deadlock &&
                    asked.machine.machine.machine) {
                    ++deadlocks;
                    expect_nobody_can_go_on(asked.machine);
                }
            }
        };
        for (Refinement::Model const model :
             {Refinement::Model::traces, Refinement::Model::failures,
              Refinement::Model::failures_divergences}) {
            judge("refinement", [&](QuestionOptions const& options) {
                return refinement(process, other, model, source, options);
            });
            judge("refinement by a relative", [&](QuestionOptions const& options) {
                return refinement(other, process, model, source, options);
            });
        }
        judge("deadlock", [&](QuestionOptions const& options) {
            return deadlock_free(process, source, options);
        });
        judge("divergence", [&](QuestionOptions const& options) {
            return divergence_free(hidden, source, options);
        });
        judge("determinism", [&](QuestionOptions const& options) {
            return deterministic(process, source, options);
        });
        ASSERT_FALSE(HasFailure()) << "CALDER_SEED=" << seed;
    }
    if (seeds.end - seeds.first >= 1000) {
        std::uint64_t const asked = (seeds.end - seeds.first) * 9;
        EXPECT_GT(decided, asked / 2);
        EXPECT_GT(by_machine, asked / 4);
        EXPECT_GT(failing, asked / 10);
        EXPECT_GT(deadlocks, (seeds.end - seeds.first) / 20);
    }
    std::cout << decided << " decided, " << by_machine << " by a machine, " << failing << " fail, "
              << deadlocks << " deadlocks\n";
}

} // namespace
} // namespace Calder::Oracle
