#include "tests/csp/terms.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {
namespace {

std::string part_text(HighLevelMachine::ComponentEvent const& part) {
    return std::to_string(part.component) + ":" + name_of(part.event);
}

/// A line a format: `0 runs 0 1: a(0:a)>1 tau(0:tau 1:b)>0`. An event number 0 stands as `-`.
std::string formats_text(Process const& term, Sets const& alphabets) {
    EXPECT_EQ(alphabets.size(), term.argument_count()) << "the row is wrong";
    std::string lines;
    auto const formats = term.high_level_formats(alphabets);
    for (std::size_t index = 0; index < formats->size(); ++index) {
        lines += std::to_string(index) + " runs";
        for (unsigned const component : (*formats)[index].active_components) {
            lines += " " + std::to_string(component);
        }
        lines += ":";
        for (HighLevelMachine::UnCompiledRule const& rule : (*formats)[index].rules) {
            std::string parts;
            for (HighLevelMachine::ComponentEvent const& part : rule.component_events) {
                parts += (parts.empty() ? "" : " ") + part_text(part);
            }
            lines +=
                " " + name_of(rule.event) + "(" + parts + ")>" + std::to_string(rule.target_format);
            EXPECT_TRUE(rule.extra_components.empty());
        }
        lines += "\n";
    }
    return lines;
}

void expect_formats(Term term, Sets const& alphabets, char const* formats) {
    EXPECT_EQ(formats_text(*term, alphabets), formats) << text(*term);
}

TEST(Formats, of_processes) {
    expect_formats(prefix(a, P), {{}}, "0 runs: a()>1\n1 runs 0:\n");
    expect_formats(prefix(a, P), {{tau, tick, b}},
                   "0 runs: a()>1\n1 runs 0: tau(0:tau)>1 tick(0:tick)>1 b(0:b)>1\n");
    expect_formats(set_prefix({b, a}, P), {{tau, c}},
                   "0 runs: a()>1 b()>1\n1 runs 0: tau(0:tau)>1 c(0:c)>1\n");
    expect_formats(set_prefix({}, P), {{}}, "0 runs:\n1 runs 0:\n");
    expect_formats(external({P, Q}), {{a, tick}, {tau, b}},
                   "0 runs 0 1: tick(0:tick)>1 a(0:a)>1 tau(1:tau)>0 b(1:b)>2\n"
                   "1 runs 0: tick(0:tick)>1 a(0:a)>1\n"
                   "2 runs 1: tau(1:tau)>2 b(1:b)>2\n");
    expect_formats(STOP, {}, "0 runs:\n");
    expect_formats(internal({P, Q}), {{a, tick}, {tau}},
                   "0 runs: tau()>1 tau()>2\n"
                   "1 runs 0: tick(0:tick)>1 a(0:a)>1\n"
                   "2 runs 1: tau(1:tau)>2\n");
    expect_formats(internal({}), {}, "0 runs:\n");
    expect_formats(sliding(P, Q), {{tau, a}, {b}},
                   "0 runs 0: tau(0:tau)>0 a(0:a)>1 tau()>2\n"
                   "1 runs 0: tau(0:tau)>1 a(0:a)>1\n"
                   "2 runs 1: b(1:b)>2\n");
    expect_formats(sliding(P, Q), {{}, {}}, "0 runs 0: tau()>2\n1 runs 0:\n2 runs 1:\n");
    expect_formats(sequence(P, Q), {{a, tick}, {b}},
                   "0 runs 0: tau(0:tick)>1 a(0:a)>0\n1 runs 1: b(1:b)>1\n");
    expect_formats(interrupt(P, Q), {{a, tick}, {tau, b}},
                   "0 runs 0 1: tick(0:tick)>2 a(0:a)>0 tau(1:tau)>0 b(1:b)>1\n"
                   "1 runs 1: tau(1:tau)>1 b(1:b)>1\n"
                   "2 runs:\n");
    expect_formats(interrupt(P, Q), {{a}, {}}, "0 runs 0 1: a(0:a)>0\n1 runs 1:\n2 runs:\n");
    expect_formats(interleave({P, Q}), {{a, tick}, {tau, tick}},
                   "0 runs 0 1: a(0:a)>0 tau(1:tau)>0 tick(0:tick 1:tick)>0\n");
    expect_formats(interleave({P, Q, P}), {{a}, {tick}, {tick, a}},
                   "0 runs 0 1 2: a(0:a)>0 a(2:a)>0\n");
    expect_formats(SKIP, {}, "0 runs: tick()>0\n");
}

TEST(Formats, of_parallel_operators) {
    expect_formats(parallel({a}, {P, Q}), {{tick, a, b}, {c}},
                   "0 runs 0 1: tick(0:tick 1:tick)>0 a(0:a 1:a)>0 tick(0:tick 1:tick)>0 b(0:b)>0 "
                   "c(1:c)>0\n");
    expect_formats(
        parallel({}, {P, Q, P}), {{b}, {}, {b}},
        "0 runs 0 1 2: tick(0:tick 1:tick 2:tick)>0 tick(0:tick 1:tick 2:tick)>0 b(0:b)>0 "
        "b(2:b)>0\n");
    expect_formats(parallel({a}, {}), {}, "0 runs: tick()>0 a()>0 tick()>0\n");
    expect_formats(alphabetised({{a}, {a, b}}, {P, Q}), {{tick, a}, {tau, tick}},
                   "0 runs 0 1: tick(0:tick 1:tick)>0 a(0:a 1:a)>0 b(1:b)>0 tick(0:tick 1:tick)>0 "
                   "tau(1:tau)>0\n");
    expect_formats(alphabetised({{a}, {b}}, {P, Q}), {{tick}, {b}},
                   "0 runs 0 1: tick(0:tick 1:tick)>0 a(0:a)>0 b(1:b)>0\n");
    expect_formats(alphabetised({{a}, {}, {a, c}}, {P, Q, P}), {{tau}, {}, {tau, a}},
                   "0 runs 0 1 2: tick(0:tick 1:tick 2:tick)>0 a(0:a 2:a)>0 c(2:c)>0 tau(0:tau)>0 "
                   "tau(2:tau)>0\n");
    // As an event of the alphabets, and again as each argument's own.
    expect_formats(alphabetised({{tau}, {tau, a}}, {P, Q}), {{tau}, {}},
                   "0 runs 0 1: tau(0:tau 1:tau)>0 tick(0:tick 1:tick)>0 a(1:a)>0 tau(0:tau)>0\n");
    expect_formats(alphabetised({}, {}), {}, "0 runs: tick()>0\n");
    expect_formats(linked({{a, b}, {b, c}}, P, Q), {{tau, a, c}, {tick, a, b}},
                   "0 runs 0 1: tau(0:a 1:b)>0 tau(0:tau)>0 c(0:c)>0 a(1:a)>0\n");
    expect_formats(linked({}, P, Q), {{tick}, {tick}}, "0 runs 0 1: tick(0:tick 1:tick)>0\n");
    expect_formats(linked({{tick, b}}, P, Q), {{tick, b}, {a, b}},
                   "0 runs 0 1: tick(0:tick 1:b)>0 b(0:b)>0 a(1:a)>0\n");
    expect_formats(linked({{a, tick}}, P, Q), {{a, b}, {tick, a}},
                   "0 runs 0 1: tau(0:a 1:tick)>0 b(0:b)>0 a(1:a)>0\n");
}

TEST(Formats, of_other_operators) {
    expect_formats(hide(P, {a}), {{tau, tick, a, b}},
                   "0 runs 0: tau(0:tau)>0 tick(0:tick)>0 tau(0:a)>0 b(0:b)>0\n");
    expect_formats(hide(P, {a}), {{}}, "0 runs 0:\n");
    expect_formats(project(P, {a}), {{tau, tick, a, b}},
                   "0 runs 0: tau(0:tau)>0 tick(0:tick)>0 a(0:a)>0 tau(0:b)>0\n");
    expect_formats(rename(P, {{a, b}, {a, c}, {tick, a}}), {{tick, a, b}},
                   "0 runs 0: a(0:tick)>0 c(0:a)>0 b(0:a)>0 b(0:b)>0\n");
    expect_formats(exception({a, tick}, P, Q), {{tick, a, b}, {c}},
                   "0 runs 0: tick(0:tick)>1 a(0:a)>1 b(0:b)>0\n1 runs 1: c(1:c)>1\n");
    expect_formats(sync_choice({a}, {P, Q}), {{tau, a, b}, {tick}},
                   "0 runs 0 1: a(0:a 1:a)>0 tau(0:tau)>0 b(0:b)>1 tick(1:tick)>2\n"
                   "1 runs 0: tau(0:tau)>1 a(0:a)>1 b(0:b)>1\n"
                   "2 runs 1: tick(1:tick)>2\n");
    expect_formats(sync_choice({a}, {}), {}, "0 runs: a()>0\n");
    expect_formats(sync_interrupt({a}, P, Q), {{a, tick}, {a, b}},
                   "0 runs 0 1: tick(0:tick 1:-)>2 a(0:a 1:a)>0 b(0:- 1:b)>1\n"
                   "1 runs 1: a(1:a)>1 b(1:b)>1\n"
                   "2 runs:\n");
    expect_formats(sync_interrupt({}, P, Q), {{a}, {tau}},
                   "0 runs 0 1: a(0:a 1:-)>0 tau(0:- 1:tau)>0\n1 runs 1: tau(1:tau)>1\n2 runs:\n");
}

bool runs_in(HighLevelMachine::UnCompiledFormat const& format, unsigned index) {
    auto const& active = format.active_components;
    return std::find(active.begin(), active.end(), index) != active.end();
}

/// A host learns from the answers and from the formats how the arguments run: both must say the
/// same.
void expect_one_account(Process const& term) {
    Sets const alphabets(term.argument_count(), BitSet{tau, tick, a, b});
    auto const formats = term.high_level_formats(alphabets);
    bool any_runs = false;
    for (unsigned index = 0; index < term.argument_count(); ++index) {
        bool const runs = runs_in(formats->front(), index);
        any_runs = any_runs || runs;
        EXPECT_EQ(term.process_state(index) == ArgumentState::on, runs) << index;
        bool is_turned_on = false;
        for (auto const& rule : formats->front().rules) {
            if (!runs && runs_in(formats->at(rule.target_format), index)) {
                is_turned_on = true;
                EXPECT_EQ(term.turned_on_by(index) == TurnedOnBy::silent_step, rule.event == tau);
            }
        }
        EXPECT_NE(is_turned_on, runs) << index;
    }
    EXPECT_EQ(term.recursion_type() == RecursionType::starts_none, !any_runs);
}

TEST(Formats, agree_with_the_answers_on_which_arguments_run_and_when) {
    for (Construct const& construct : constructs) {
        SCOPED_TRACE(construct.name);
        if (construct.operands > 0) {
            expect_one_account(*construct.of(P, Q));
        }
    }
}

/// A line a transition: `[a] a to P, moved`; also checks that the term is held meanwhile.
std::string high_level_text(Process const& term, Sets const& alphabets) {
    std::string lines;
    std::uintptr_t const before = term.reference_count();
    term.visit_high_level_transitions(alphabets, [&](std::vector<unsigned> const& taking_part,
                                                     unsigned event, Term successor,
                                                     bool replaces) {
        lines += "[";
        for (unsigned const participant : taking_part) {
            lines += name_of(participant);
        }
        lines +=
            "] " + name_of(event) + " to " + text(*successor) + (replaces ? "\n" : ", moved\n");
        if (term.kind() < 20) { // an application is held by its host
            EXPECT_GT(term.reference_count(), before) << "may vanish while it is visited";
        }
    });
    return lines;
}

void expect_high_level(Term term, Sets const& alphabets, char const* transitions) {
    EXPECT_EQ(high_level_text(*term, alphabets), transitions);
    EXPECT_THROW(term->visit_high_level_transitions(alphabets, {}), std::bad_function_call);
}

TEST(HighLevelTransitions, are_told_by_some_constructs_beside_their_formats) {
    expect_high_level(prefix(a, P), {{}}, "[] a to P\n");
    expect_high_level(set_prefix({b, a}, P), {{}}, "[] a to P\n[] b to P\n");
    expect_high_level(internal({P, Q}), {{}, {}}, "[] tau to P\n[] tau to Q\n");
    expect_high_level(sequence(P, Q), {{tau, tick, a}, {b}},
                      "[tau] tau to P ; Q, moved\n[tick] tau to Q\n[a] a to P ; Q, moved\n");
    expect_high_level(
        exception({a}, P, Q), {{tau, tick, a}, {}},
        "[tau] tau to P [| {a} |> Q, moved\n[tick] tick to P [| {a} |> Q, moved\n[a] a to Q\n");
    std::string silent;
    for (Construct const& construct : constructs) {
        Sets const alphabets(construct.operands, BitSet{tick, a});
        silent += high_level_text(*construct.of(P, Q), alphabets).empty() ? "-" : "+";
    }
    EXPECT_EQ(silent, "++-+--+----+-------") << "in the order of the table of constructs";
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
