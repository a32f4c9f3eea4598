#include "state_space/machine/machine_exploration.h"
#include "tests/state_space/machine/fake_construct.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using Testing::always;
using Testing::construct;
using Testing::format_of;
using Testing::leaf;
using Testing::machine_of;
using Testing::ring;
using Testing::Rows;
using Testing::rows_of;
using Testing::UnCompiledFormat;

MachineExploration explore_term(ProcessPointer const& term, RunOptions const& options = {}) {
    NamedProcessSource const source;
    return explore_by_machine(term, source, options);
}

/// `count` rings of that size, each on its own.
ProcessPointer rings(unsigned count, unsigned size) {
    std::vector<ProcessPointer> arguments;
    for (unsigned i = 0; i < count; ++i) {
        arguments.push_back(ring("ring" + std::to_string(i), size, 3 + i));
    }
    return construct("Rings", arguments);
}

TEST(MachineRun, numbers_states_as_they_are_reached_and_transitions_ascend_by_event) {
    ProcessPointer const term =
        construct("C", {ring("a", 2, 5), leaf("b", {{{3, 1}}, {}}), leaf("c", {{{4, 0}}})});
    Rows const wanted{
        {{3, 1}, {4, 0}, {5, 2}}, {{4, 1}, {5, 3}}, {{3, 3}, {4, 2}, {5, 0}}, {{4, 3}, {5, 1}}};
    MachineExploration const found = explore_term(term);
    EXPECT_EQ(rows_of(found.run.lts), wanted);
    EXPECT_EQ(found.run.outcome, Outcome::complete);
}

TEST(MachineRun, a_term_that_is_no_construct_is_explored_as_it_stands) {
    Rows const rows{{{5, 1}, {3, 1}}, {{4, 0}}};
    MachineExploration const found = explore_term(leaf("a", rows));
    EXPECT_EQ(rows_of(found.run.lts), rows);
    EXPECT_EQ(found.run.state_count, 2U);
    EXPECT_EQ(found.run.transition_count, 3U);
    EXPECT_EQ(found.machine, nullptr);
}

TEST(MachineRun, a_transition_that_is_reported_twice_counts_once) {
    UnCompiledFormat const ends;
    auto const both_do_9 = format_of({0, 1}, {{9, 0, {{0, 3}}}, {9, 0, {{1, 3}}}});
    ProcessPointer const loop_a = leaf("a", {{{3, 0}}});
    ProcessPointer const loop_b = leaf("b", {{{3, 0}}});
    ProcessPointer const fork = leaf("f", {{{3, 1}, {3, 2}}, {}, {}});
    Testing::Rows wide(1);
    std::vector<Testing::PlainRule> many;
    for (unsigned event = 3; event < 43; ++event) { // more than is searched from the begin
        wide[0].emplace_back(event, 0);
        many.push_back({9, 0, {{0, event}}});
    }
    struct {
        char const* what;
        ProcessPointer term;
        StateNumber states;
        std::uint64_t transitions;
    } const rows[] = {
        {"two loops", construct("C", {loop_a, loop_b}, always({both_do_9})), 1, 1},
        {"two steps that differ",
         construct("C", {ring("x", 2, 3), ring("y", 2, 3)}, always({both_do_9})), 4, 8},
        {"many loops", construct("C", {leaf("w", wide)}, always({format_of({0}, many)})), 1, 1},
        {"by two rules that end",
         construct("C", {loop_a, loop_b},
                   always({format_of({0, 1}, {{9, 1, {{0, 3}}}, {9, 1, {{1, 3}}}}), ends})),
         2, 1},
        {"by one rule that drops what moved",
         construct("C", {fork}, always({format_of({0}, {{9, 1, {{0, 3}}}}), ends})), 2, 1},
        {"by one rule that starts afresh",
         construct(
             "C", {fork, loop_a},
             always({format_of({0}, {{9, 1, {{0, 3}}}}), format_of({1}, {{8, 1, {{1, 3}}}})})),
         2, 2},
    };
    for (auto const& row : rows) {
        for (bool const keep : {false, true}) {
            RunOptions options;
            options.keep_transitions = keep;
            auto const found = explore_term(row.term, options).run;
            EXPECT_EQ(found.state_count, row.states) << row.what;
            EXPECT_EQ(found.transition_count, row.transitions) << row.what << keep;
            EXPECT_EQ(found.lts.transition_count(), keep ? row.transitions : 0) << row.what;
        }
    }
}

TEST(MachineRun, a_limit_on_states_leaves_as_many_and_drops_the_row) {
    ProcessPointer const term = rings(3, 4);
    Rows const all = rows_of(explore_term(term).run.lts);
    ASSERT_EQ(all.size(), 64U);
    for (StateNumber const limit : {0U, 1U, 2U, 5U, 40U, 63U, 64U, 65U}) {
        for (unsigned const threads : {1U, 3U}) {
            for (bool const keep : {false, true}) {
                RunOptions options;
                options.max_states = limit;
                options.threads = threads;
                options.keep_transitions = keep;
                auto const found = explore_term(term, options).run;
                EXPECT_EQ(found.outcome, limit < 64 ? Outcome::state_limit : Outcome::complete);
                EXPECT_EQ(found.state_count, std::min(limit, 64U));
                // The rows before the first one that leads too far.
                Rows wanted;
                while (wanted.size() < std::min<std::size_t>(limit, 64) &&
                       std::all_of(all[wanted.size()].begin(), all[wanted.size()].end(),
                                   [&](auto const& step) { return step.second < limit; })) {
                    wanted.push_back(all[wanted.size()]);
                }
                EXPECT_EQ(found.transition_count, wanted.size() * 3);
                EXPECT_EQ(rows_of(found.lts), keep ? wanted : Rows());
            }
        }
    }
}

TEST(MachineRun, memory_and_progress_can_end_it) {
    Progress seen;
    unsigned calls = 0;
    auto const stop_at_second_call = [&](Progress const& progress) {
        seen = progress;
        return ++calls < 2;
    };
    struct {
        std::uint64_t max_memory;
        std::function<bool(Progress const&)> progress;
        Outcome outcome;
    } const rows[] = {{1, nullptr, Outcome::memory_limit},
                      {0, stop_at_second_call, Outcome::interrupted}};
    auto const machine = machine_of(rings(12, 4)); // long enough for several looks around
    for (auto const& row : rows) {
        for (unsigned const threads : {1U, 2U}) {
            MachineStates states(*machine);
            RunOptions options;
            options.keep_transitions = false;
            options.max_states = 1U << 20;
            options.max_memory = row.max_memory;
            options.progress = row.progress;
            options.threads = threads;
            calls = 0;
            auto const found = run(states, options);
            EXPECT_EQ(found.outcome, row.outcome);
            EXPECT_EQ(found.transition_count % 12, 0U);
            if (row.progress) {
                EXPECT_EQ(seen.states, found.state_count);
                EXPECT_EQ(seen.transitions, found.transition_count);
                EXPECT_EQ(seen.explored * 12, seen.transitions);
                EXPECT_EQ(seen.frontier, seen.states - seen.explored);
                EXPECT_GT(seen.depth, 0U);
                EXPECT_LE(seen.depth, 12U * 3U);
            }
        }
    }
}

TEST(MachineRun, what_cannot_be_compiled_or_run_is_refused) {
    auto const leads_to = [](unsigned event, unsigned format) {
        return format_of({0}, {{event, format, {{0, 3}}}});
    };
    NamedProcessSource source;
    ProcessPointer const p = source.reference("P");
    ProcessPointer const a = ring("a", 2, 3);
    source.define("P", construct("Endless", {a, p}));
    ProcessPointer const long_compiled = construct("Long", {ring("b", 50'000, 3)});
    struct {
        char const* what;
        ProcessPointer term;
        std::uint64_t max_memory;
        std::function<bool(Progress const&)> progress;
        std::string refusal;
        Outcome outcome;
    } const rows[] = {
        {"at the start", p, 0, nullptr, "it nests too deeply for the stack", Outcome::complete},
        {"on the way",
         construct("C", {a, p},
                   always({leads_to(4, 1), leads_to(5, 2), leads_to(6, 3),
                           format_of({1}, {{7, 3, {{1, 3}}}})})),
         0, nullptr, "it nests too deeply for the stack", Outcome::complete},
        {"no memory to compile", long_compiled, 1, nullptr,
         "while it was compiled, " + std::string(describe(Outcome::memory_limit)),
         Outcome::complete},
        {"interrupted while compiled", long_compiled, 0, [](Progress const&) { return false; }, "",
         Outcome::interrupted},
    };
    for (auto const& row : rows) {
        RunOptions options;
        options.max_memory = row.max_memory;
        options.progress = row.progress;
        MachineExploration const found = explore_by_machine(row.term, source, options);
        EXPECT_EQ(found.run.refusal, row.refusal) << row.what;
        EXPECT_EQ(found.run.outcome, row.outcome) << row.what;
        EXPECT_EQ(found.machine, nullptr) << row.what;
        EXPECT_EQ(found.states, nullptr) << row.what;
    }
}

/// Format i runs the first argument and i groups of three larger ones; 9 leads to the next format.
/// So the states become wider while there are narrow ones around.
ProcessPointer growing() {
    std::vector<ProcessPointer> arguments{leaf("a", {{{3, 1}}, {{3, 2}}, {{3, 0}, {4, 0}}})};
    std::vector<unsigned> active{0};
    std::vector<Testing::PlainRule> rules{{3, 0, {{0, 3}}}, {9, 1, {{0, 4}}}};
    std::vector<UnCompiledFormat> formats{format_of(active, rules)};
    for (unsigned format = 1; format < 5; ++format) {
        unsigned const first = 3 * format - 2;
        for (unsigned argument = first; argument < first + 3; ++argument) {
            arguments.push_back(ring("r" + std::to_string(argument), 600, 5));
            active.push_back(argument);
        }
        rules.push_back({4 + format, format, {{first, 5}, {first + 1, 5}, {first + 2, 5}}});
        for (Testing::PlainRule& rule : rules) {
            rule.target_format = rule.event == 9 ? (format + 1) % 5 : format;
        }
        formats.push_back(format_of(active, rules));
    }
    return construct("Growing", arguments, always(formats));
}

TEST(MachineRun, the_number_of_threads_makes_no_difference) {
    struct {
        char const* what;
        ProcessPointer term;
        StateNumber max_states;
        bool grows;
    } const rows[] = {{"one configuration", rings(6, 4), no_state, false},
                      {"states that become wider", growing(), 60'000, true}};
    for (auto const& row : rows) {
        auto const machine = machine_of(row.term);
        MachineStates wide_already(*machine);
        RunOptions options;
        options.max_states = row.max_states;
        run(wide_already, options);
        auto const wanted = run(wide_already, options);
        ASSERT_EQ(wanted.state_count, row.grows ? row.max_states : 4096U);
        ASSERT_EQ(wide_already.met(), row.grows ? 5U : 1U);
        Rows const wanted_rows = rows_of(wanted.lts);
        for (unsigned const threads : {1U, 2U, 4U}) {
            MachineStates states(*machine);
            EXPECT_EQ(states.width() < wide_already.width(), row.grows) << "nothing to widen";
            options.threads = threads;
            auto const found = run(states, options);
            EXPECT_EQ(found.outcome, wanted.outcome) << row.what;
            EXPECT_EQ(found.state_count, wanted.state_count) << row.what;
            EXPECT_EQ(found.transition_count, wanted.transition_count) << row.what;
            EXPECT_TRUE(rows_of(found.lts) == wanted_rows) << row.what << ", " << threads;
            for (StateNumber state = 0; state < found.state_count; ++state) {
                ASSERT_TRUE(std::equal(found.states->words(state),
                                       found.states->words(state) + found.states->width(),
                                       wanted.states->words(state)))
                    << row.what << ", " << threads;
            }
        }
    }
}

TEST(MachineRun, tells_which_slots_take_part_in_a_step) {
    ProcessPointer const a = leaf("a", {{{3, 1}}, {}});
    ProcessPointer const term = construct(
        "C", {a, ring("b", 2, 4), ring("c", 2, 5)},
        always({format_of({0, 1, 2}, {{6, 0, {{2, 5}, {0, 3}}}, {7, 1, {{1, 4}}}, {8, 0, {}}}),
                format_of({2, 1}, {{6, 1, {{1, 4}}}})}));
    MachineExploration const found = explore_term(term);
    ASSERT_EQ(
        rows_of(found.run.lts),
        (Rows{{{6, 1}, {7, 2}, {8, 0}}, {{7, 3}, {8, 1}}, {{6, 4}}, {{6, 5}}, {{6, 2}}, {{6, 3}}}));
    using Numbers = std::vector<std::uint32_t>;
    struct {
        StateNumber source;
        unsigned event;
        StateNumber target;
        Numbers slots;
    } const rows[] = {
        {0, 6, 1, {0, 2}}, {0, 7, 2, {1}}, {0, 8, 0, {}},
        {2, 6, 4, {1}},    {0, 6, 2, {}}, // there is no such step, nor these
        {1, 6, 1, {}},     {0, 9, 1, {}},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(slots_taking_part(found, row.source, row.event, row.target), row.slots)
            << row.source << " " << row.event << " " << row.target;
    }
    EXPECT_EQ(components_in(found, 1), (Numbers{0, 1, 2}));
    EXPECT_EQ(components_in(found, 2), (Numbers{2, 1}));
}

} // namespace
} // namespace Calder::StateSpace
