#include "tests/refinement/random_systems.h"

#include <gtest/gtest.h>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using StateSpace::Testing::NamedProcessSource;

NamedProcessSource const source;

// States are numbered by their rows; the last row often is what stands behind a tick.
Rows const stop{{}};
Rows const skip{{{tick, 1}}, {}};
Rows const once{{{a, 1}}, {}};
Rows const tick_or_a{{{tick, 1}, {a, 1}}, {}};
Rows const silent_or_tick{{{tick, 2}, {tau, 1}}, {{a, 2}}, {}};
Rows const diverging{{{tau, 0}}};
Rows const a_behind_tick{{{tick, 1}}, {{a, 1}}};
Rows const loop_behind_tick{{{tick, 1}}, {{tau, 1}}};
Rows const tick_or_loop{{{tick, 1}, {tau, 0}}, {}};
Rows const a_then_loop{{{a, 1}}, {{tau, 1}}};
Rows const skip_or_stop{{{tau, 1}, {tau, 2}}, {{tick, 2}}, {}};
Rows const maybe_a{{{tau, 1}, {tau, 2}}, {{a, 2}}, {}};

Rows const maybe_skip_or_a{{{tau, 1}, {tau, 2}}, {{tick, 3}}, {{a, 3}}, {}};

struct RefinementRow {
    char const* what;
    Rows const& abstract;
    Rows const& concrete;
    /// In traces, failures, failures and divergences.
    std::array<bool, 3> holds;
};

TEST(Questions, TickAndDivergenceInRefinements) {
    RefinementRow const rows[] = {
        {"tick is an event of traces", stop, skip, {false, false, false}},
        {"STOP refuses tick", skip, stop, {true, false, false}},
        {"SKIP refuses all but tick", tick_or_a, skip, {true, true, true}},
        {"what can tick may do nothing else", tick_or_a, once, {true, false, false}},
        {"what can tick refuses a", once, tick_or_a, {false, false, false}},
        {"nor must it tick where it need not stay", silent_or_tick, once, {true, true, true}},
        {"a state that can tick settles, unstable as it is",
         silent_or_tick,
         skip,
         {true, true, true}},
        {"and then it accepts tick alone", maybe_skip_or_a, silent_or_tick, {true, true, true}},
        {"nothing behind a tick counts, neither events", skip, a_behind_tick, {true, true, true}},
        {"nor refusals", a_behind_tick, skip, {true, true, true}},
        {"nor loops", skip, loop_behind_tick, {true, true, true}},
        {"a loop beside a tick counts", skip, tick_or_loop, {true, true, false}},
        {"but it accepts tick", tick_or_loop, skip, {true, true, true}},
        {"may tick is not must", skip, skip_or_stop, {true, false, false}},
        {"below a divergence everything is allowed", diverging, tick_or_a, {false, false, true}},
        {"but not before it", a_then_loop, stop, {true, false, false}},
        {"what never settles refuses nothing", once, diverging, {true, true, false}},
        {"and allows no refusal", diverging, stop, {true, false, true}},
        {"a divergence for a divergence", a_then_loop, a_then_loop, {true, true, true}},
    };
    for (RefinementRow const& row : rows) {
        for (std::size_t model = 0; model < 3; ++model) {
            Answer const answer = refinement(term_of(row.abstract, "A"), term_of(row.concrete, "C"),
                                             static_cast<Model>(model), source);
            EXPECT_EQ(answer.verdict, row.holds[model] ? Verdict::holds : Verdict::fails)
                << row.what << ", model " << model;
        }
    }
}

struct ProcessRow {
    char const* what;
    Rows const& process;
    bool deadlock_free;
    bool divergence_free;
    bool deterministic;
};

TEST(Questions, TickAndDivergenceOfOneProcess) {
    ProcessRow const rows[] = {
        {"STOP", stop, false, true, true},
        {"the end after tick is no deadlock", skip, true, true, true},
        {"the end after a is one; tick or a is a choice of its own", tick_or_a, false, true, false},
        {"nothing behind a tick counts", a_behind_tick, true, true, true},
        {"nor a loop", loop_behind_tick, true, true, true},
        {"a loop beside a tick counts", tick_or_loop, true, false, false},
        {"a loop is no deadlock", diverging, true, false, false},
        {"tick is refused where it can be done", silent_or_tick, false, true, false},
        {"SKIP or STOP", skip_or_stop, false, true, false},
        {"a or nothing", maybe_a, false, true, false},
    };
    for (ProcessRow const& row : rows) {
        auto const term = term_of(row.process, "P");
        auto const expect = [&](Answer const& answer, bool holds) {
            EXPECT_EQ(answer.verdict, holds ? Verdict::holds : Verdict::fails) << row.what;
        };
        expect(deadlock_free(term, source), row.deadlock_free);
        expect(divergence_free(term, source), row.divergence_free);
        expect(deterministic(term, source), row.deterministic);
    }
}

TEST(Questions, TracesAndEvents) {
    struct {
        Rows const& process;
        Trace trace;
        bool exists;
    } const traces[] = {
        {stop, {}, true},
        {stop, {a}, false},
        {skip, {tick}, true},
        {once, {tick}, false},
        {silent_or_tick, {a}, true},
        {a_behind_tick, {tick, a}, false},
        {a_behind_tick, {a}, false},
        {a_then_loop, {a}, true},
        {a_then_loop, {a, a}, false},
    };
    for (auto const& row : traces) {
        EXPECT_EQ(has_trace(term_of(row.process, "P"), row.trace, source).verdict,
                  row.exists ? Verdict::holds : Verdict::fails)
            << text_of(row.process) << text_of(row.trace);
    }
    struct {
        Rows const& process;
        BitSet events;
        bool holds;
    } const events[] = {
        {skip, {tick}, false},        {skip, {a}, true}, {a_behind_tick, {a, b}, true},
        {silent_or_tick, {a}, false}, {stop, {}, true},  {diverging, {tau}, true},
    };
    for (auto const& row : events) {
        EXPECT_EQ(never(term_of(row.process, "P"), row.events, source).verdict,
                  row.holds ? Verdict::holds : Verdict::fails)
            << text_of(row.process);
    }
}

} // namespace
} // namespace Calder::Refinement::Testing
