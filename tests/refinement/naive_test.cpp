#include "tests/refinement/random_systems.h"
#include "tests/support/seeds.h"

#include <gtest/gtest.h>

#include <iostream>
#include <numeric>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using StateSpace::Testing::NamedProcessSource;
using StateSpace::Testing::ProcessPointer;

/// Long enough for nearly all systems of so few states; a longer trace of a finding is not judged.
constexpr std::size_t longest = 7;

constexpr std::array models{Model::traces, Model::failures, Model::failures_divergences};

NamedProcessSource const source;

std::vector<unsigned> events_of(std::vector<EvidenceStep> const& steps) {
    std::vector<unsigned> events;
    for (EvidenceStep const& step : steps) {
        events.push_back(step.event);
    }
    return events;
}

Trace visible(std::vector<unsigned> events) {
    std::erase(events, tau);
    return events;
}

std::vector<unsigned> possible_after(Denotation const& process, Trace trace) {
    std::vector<unsigned> events;
    for (unsigned const event : {tick, a, b}) {
        trace.push_back(event);
        if (process.failures.count(trace) != 0) {
            events.push_back(event);
        }
        trace.pop_back();
    }
    return events;
}

/// Whether a state accepts exactly these events when it settles.
bool accepts(Row const& row, std::vector<unsigned> const& accepted) {
    return refusals_of(row)[7 & ~set_of(accepted)] &&
           (set_of(accepted) == 0 || !refusals_of(row)[7]);
}

struct Sides {
    Rows abstract;
    Rows concrete;

    std::string text() const { return text_of(abstract) + " | " + text_of(concrete); }
};

/// Each step is one of the concrete side, and the abstract side does not have what is there.
void replay(Sides const& sides, Denotation const& abstract, Model model, Evidence const& evidence) {
    auto const events = events_of(evidence.steps);
    auto const states = states_after(sides.concrete, events);
    ASSERT_FALSE(states.empty()) << text_of(events);
    Trace trace = visible(events);
    switch (evidence.reason) {
    case Reason::event:
        ASSERT_EQ(evidence.event, trace.back());
        EXPECT_EQ(abstract.failures.count(trace), 0U);
        trace.pop_back();
        EXPECT_EQ(abstract.failures.count(trace), 1U);
        EXPECT_EQ(evidence.allowed, possible_after(abstract, trace));
        break;
    case Reason::refusal: {
        EXPECT_NE(model, Model::traces);
        EXPECT_TRUE(std::any_of(states.begin(), states.end(), [&](unsigned state) {
            return accepts(sides.concrete[state], evidence.offered);
        })) << text_of(evidence.offered);
        Refusals const refused = abstract.failures.at(trace);
        EXPECT_FALSE(refused[7 & ~set_of(evidence.offered)]);
        // What is demanded is exactly what the abstract side accepts at least.
        for (unsigned set = 0; set < 8; ++set) {
            bool const is_demanded =
                std::none_of(evidence.demanded.begin(), evidence.demanded.end(),
                             [set](auto const& least) { return (set_of(least) & set) == 0; });
            EXPECT_EQ(refused[set], !is_demanded) << set;
        }
        break;
    }
    case Reason::divergence: {
        EXPECT_EQ(model, Model::failures_divergences);
        EXPECT_FALSE(abstract.diverges_up_to(trace));
        EXPECT_TRUE(std::any_of(states.begin(), states.end(),
                                [&](unsigned state) { return is_on_loop(sides.concrete, state); }));
        auto const loop = events_of(evidence.loop);
        EXPECT_EQ(loop, std::vector<unsigned>(std::max<std::size_t>(loop.size(), 1), tau));
        EXPECT_EQ(evidence.loop.front().source.number, evidence.end.number);
        EXPECT_EQ(evidence.loop.back().target, evidence.end.number);
        break;
    }
    default: ADD_FAILURE() << "no reason";
    }
}

bool is_short(Evidence const& evidence) {
    return visible(events_of(evidence.steps)).size() < longest;
}

/// Whether the judgement counts: a system of few states could still need longer traces.
bool check(Sides const& sides, Denotation const& abstract, Model model, Answer const& answer) {
    Denotation const concrete = denotation_of(sides.concrete, longest);
    bool const holds = refines(abstract, concrete, model);
    EXPECT_NE(answer.verdict, Verdict::undecided);
    if (answer.verdict == Verdict::fails) {
        if (!is_short(answer.evidence)) {
            return false;
        }
        replay(sides, abstract, model, answer.evidence);
        FewestSteps const fewest = fewest_steps(sides.concrete, abstract, model, longest);
        EXPECT_EQ(fewest.any(), answer.evidence.steps.size());
    }
    EXPECT_EQ(answer.verdict == Verdict::holds, holds);
    return true;
}

/// The same steps and the same counts: both engines run one system.
void expect_same(Answer const& left, Answer const& right) {
    EXPECT_EQ(left.verdict, right.verdict);
    EXPECT_EQ(left.evidence.reason, right.evidence.reason);
    EXPECT_EQ(left.evidence.event, right.evidence.event);
    EXPECT_EQ(left.evidence.offered, right.evidence.offered);
    EXPECT_EQ(left.evidence.demanded, right.evidence.demanded);
    EXPECT_EQ(events_of(left.evidence.steps), events_of(right.evidence.steps));
    EXPECT_EQ(events_of(left.evidence.loop), events_of(right.evidence.loop));
    EXPECT_EQ(events_of(left.evidence.other), events_of(right.evidence.other));
    EXPECT_EQ(left.state_count, right.state_count);
}

std::size_t count_of_steps(Rows const& rows) {
    return std::accumulate(rows.begin(), rows.end(), std::size_t{0},
                           [](std::size_t count, Row const& row) { return count + row.size(); });
}

struct Tally {
    std::array<unsigned, 3> holding{};
    unsigned judged = 0;
    unsigned not_judged = 0;
};

void judge(Sides const& sides, Tally& tally) {
    Denotation const abstract = denotation_of(sides.abstract, longest);
    for (Model const model : models) {
        Answer const answer =
            refinement(term_of(sides.abstract, "A"), term_of(sides.concrete, "C"), model, source);
        bool const is_judged = check(sides, abstract, model, answer);
        tally.holding[static_cast<std::size_t>(model)] += answer.verdict == Verdict::holds ? 1 : 0;
        tally.not_judged += is_judged ? 0 : 1;
    }
    ++tally.judged;
}

TEST(NaiveSemantics, RefinementIsWhatTheDefinitionsSay) {
    Calder::Testing::SeedRange const seeds = Calder::Testing::seeds_from_environment(4000);
    std::cout << seeds.text() << '\n';
    Tally tally;
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        Random random(seed);
        Rows const first = random_rows(random, 4);
        Rows const second = relative_of(first, random);
        Sides const sides = below(random, 2) == 0 ? Sides{first, second} : Sides{second, first};
        judge(sides, tally);
        ASSERT_FALSE(HasFailure()) << "CALDER_SEED=" << seed << ": " << sides.text();
    }
    std::cout << tally.judged << " pairs, of which " << tally.holding[0] << " hold in traces, "
              << tally.holding[1] << " in failures, " << tally.holding[2]
              << " in failures and divergences\n";
    EXPECT_EQ(tally.judged, seeds.end - seeds.first);
    if (tally.judged >= 1000) {
        for (unsigned const holding : tally.holding) {
            EXPECT_GT(holding, tally.judged / 4);
            EXPECT_LT(holding, tally.judged * 3 / 4);
        }
        EXPECT_LT(tally.not_judged, tally.judged / 50);
    }
}

/// Of a machine, against the system that its exploration finds.
TEST(NaiveSemantics, MachinesAnswerAsTheirSystems) {
    Calder::Testing::SeedRange const seeds =
        Calder::Testing::one_of(4, Calder::Testing::seeds_from_environment(4000));
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        Random random(seed);
        ProcessPointer const machine = random_machine(random);
        Rows const rows = rows_of_machine(machine);
        ProcessPointer const other = term_of(relative_of(rows, random), "other");
        ProcessPointer const term = term_of(rows, "rows");
        for (Model const model : models) {
            Answer const answer = refinement(other, machine, model, source);
            EXPECT_TRUE(answer.verdict == Verdict::undecided || answer.machine.machine);
            expect_same(answer, refinement(other, term, model, source));
            expect_same(refinement(machine, other, model, source),
                        refinement(term, other, model, source));
        }
        Answer const deadlock = deadlock_free(machine, source);
        expect_same(deadlock, deadlock_free(term, source));
        if (deadlock.verdict == Verdict::holds &&
            never(machine, BitSet{tick}, source).verdict == Verdict::holds) {
            EXPECT_EQ(deadlock.transition_count, count_of_steps(rows));
        }
        expect_same(divergence_free(machine, source), divergence_free(term, source));
        expect_same(deterministic(machine, source), deterministic(term, source));
        ASSERT_FALSE(HasFailure()) << "CALDER_SEED=" << seed << ": " << text_of(rows);
    }
}

/// Two runs with one trace, of which one performs the event and the other refuses it.
void replay_nondeterminism(Rows const& rows, Evidence const& evidence) {
    auto performing = events_of(evidence.steps);
    auto refusing = events_of(evidence.other);
    if (evidence.other_performs) {
        std::swap(performing, refusing);
    }
    EXPECT_FALSE(states_after(rows, performing).empty());
    ASSERT_FALSE(performing.empty());
    EXPECT_EQ(performing.back(), evidence.event);
    performing.pop_back();
    EXPECT_EQ(visible(performing), visible(refusing));
    auto const states = states_after(rows, refusing);
    EXPECT_TRUE(std::any_of(states.begin(), states.end(), [&](unsigned state) {
        return refusals_of(rows[state])[bit_of(evidence.event)] &&
               accepts(rows[state],
                       evidence.offered.empty() ? std::vector<unsigned>{} : evidence.offered);
    }));
}

TEST(NaiveSemantics, OtherQuestionsAreWhatTheDefinitionsSay) {
    Calder::Testing::SeedRange const seeds = Calder::Testing::seeds_from_environment(4000);
    std::array<unsigned, 3> holding{};
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        Random random(seed);
        Rows const rows = random_rows(random, 5);
        Denotation const meaning = denotation_of(rows, longest);
        ProcessPointer const term = term_of(rows, "P");

        Answer const deadlock = deadlock_free(term, source);
        EXPECT_EQ(deadlock.verdict == Verdict::fails, has_deadlock(rows));
        Answer const divergence = divergence_free(term, source);
        EXPECT_EQ(divergence.verdict == Verdict::holds, meaning.divergences.empty());
        Answer const determinism = deterministic(term, source);
        EXPECT_EQ(determinism.verdict == Verdict::holds, is_deterministic(meaning));
        if (determinism.evidence.reason == Reason::nondeterminism) {
            replay_nondeterminism(rows, determinism.evidence);
        }
        if (determinism.verdict == Verdict::fails && is_short(determinism.evidence)) {
            FewestSteps const fewest = fewest_steps(rows, deterministic_part(meaning),
                                                    Model::failures_divergences, longest);
            EXPECT_EQ(fewest.any(), determinism.evidence.steps.size());
        }
        for (unsigned const event : {tick, a, b}) {
            EXPECT_EQ(never(term, BitSet{event}, source).verdict == Verdict::fails,
                      performs(meaning, event));
        }
        Trace trace;
        for (std::size_t length = below(random, 4); length > 0; --length) {
            trace.push_back(below(random, 2) == 0 ? a : b);
        }
        Answer const traced = has_trace(term, trace, source);
        EXPECT_EQ(traced.verdict == Verdict::holds, meaning.failures.count(trace) == 1);
        auto const events = events_of(traced.evidence.steps);
        EXPECT_FALSE(states_after(rows, events).empty());
        Trace beginning = trace;
        while (meaning.failures.count(beginning) == 0) {
            beginning.pop_back();
        }
        EXPECT_EQ(visible(events), beginning);
        if (traced.verdict == Verdict::fails) {
            EXPECT_EQ(traced.evidence.event, trace[beginning.size()]);
            EXPECT_EQ(traced.evidence.offered, possible_after(meaning, beginning));
        }
        holding[0] += deadlock.verdict == Verdict::holds ? 1 : 0;
        holding[1] += divergence.verdict == Verdict::holds ? 1 : 0;
        holding[2] += determinism.verdict == Verdict::holds ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << "CALDER_SEED=" << seed << ": " << text_of(rows);
    }
    if (seeds.end - seeds.first >= 1000) {
        for (unsigned const count : holding) {
            EXPECT_GT(count, (seeds.end - seeds.first) / 5);
            EXPECT_LT(count, (seeds.end - seeds.first) * 9 / 10);
        }
    }
}

} // namespace
} // namespace Calder::Refinement::Testing
