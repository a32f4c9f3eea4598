#include "state_space/machine/machine_exploration.h"
#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/run.h"
#include "state_space/machine/run/visited_states.h"
#include "state_space/memory.h"
#include "tests/state_space/machine/fake_construct.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using namespace Testing;
using Watch = std::function<bool(Progress const&)>;

bool give_up(Progress const&) {
    return false;
}

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

/// All arguments do their 3 together.
FormatMaker together(unsigned count) {
    UnCompiledFormat format;
    activate_first_components(format, count);
    append_rule(format, 9, 0, HighLevelMachine::every_component(count, 3));
    return always({format});
}

ProcessPointer together(ProcessPointer const& argument, unsigned count) {
    return construct("Together", std::vector(count, argument), together(count));
}

/// A state with `width` successors by 3, and those.
ProcessPointer fan(unsigned width) {
    Rows rows(width + 1);
    for (unsigned target = 1; target <= width; ++target) {
        rows[0].emplace_back(3, target);
    }
    return leaf("fan", rows);
}

TEST(MachineRun, tables_of_every_shape_give_the_states_that_there_are) {
    Rows many_events(200);
    Rows alternating(9'000);
    for (unsigned state = 0; state < 200; ++state) {
        many_events[state].emplace_back(10 + state, (state + 1) % 200);
    }
    for (unsigned state = 0; state < 9'000; ++state) {
        alternating[state].emplace_back(10 + state % 2, (state + 1) % 9'000);
    }
    struct {
        char const* what;
        ProcessPointer term;
        StateNumber states;
        std::uint64_t transitions;
    } const rows[] = {
        {"several blocks of rules", construct("C", {leaf("m", many_events), ring("a", 3, 3)}), 600,
         1'200},
        {"a leaf too large to filter", construct("C", {leaf("l", alternating), ring("a", 3, 3)}),
         27'000, 54'000},
        {"states of several words", together(ring("a", 200, 3), 20), 200, 200},
        {"more slots without bits than a word has", together(ring("a", 1, 3), 70), 1, 1},
        {"choices of several", construct("C", {together(fan(7), 2), ring("a", 3, 3)}), 150, 297},
        {"choices of two large ones", together(fan(200), 2), 40'001, 40'000},
    };
    for (auto const& row : rows) {
        auto const found = explore_term(row.term).run;
        EXPECT_EQ(found.state_count, row.states) << row.what;
        EXPECT_EQ(found.transition_count, row.transitions) << row.what;
    }
}

TEST(MachineRun, a_transition_that_is_reported_twice_counts_once) {
    UnCompiledFormat const ends;
    auto const both_do_9 = format_of({0, 1}, {{9, 0, {{0, 3}}}, {9, 0, {{1, 3}}}});
    ProcessPointer const loop_a = leaf("a", {{{3, 0}}});
    ProcessPointer const loop_b = leaf("b", {{{3, 0}}});
    ProcessPointer const fork = leaf("f", {{{3, 1}, {3, 2}}, {}, {}});
    Rows wide(1);
    std::vector<PlainRule> many;
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
                RunOptions const options{{limit}, keep, threads};
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
    auto const stop_at_tenth_call = [&](Progress const& progress) {
        seen = progress;
        return ++calls < 10;
    };
    struct {
        std::uint64_t max_memory;
        Watch progress;
        Outcome outcome;
    } const rows[] = {{1, nullptr, Outcome::memory_limit},
                      {0, stop_at_tenth_call, Outcome::interrupted}};
    auto const machine = machine_of(rings(12, 4)); // long enough for several looks around
    for (auto const& row : rows) {
        for (unsigned const threads : {1U, 2U}) {
            ConfigurationTables tables(*machine);
            RunOptions options{{1U << 20, row.max_memory, row.progress}, false, threads};
            calls = 0;
            auto const found = run(tables, options);
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

/// `count` processes that do 3, and one of two things by it, join on it one after another: there are
/// 2^count flat rules of as many participants.
ProcessPointer chain(unsigned count) {
    auto const either = [](unsigned number) {
        std::string const name = std::to_string(number);
        return construct("Either" + name, {ring("a" + name, 2, 3), ring("b" + name, 2, 3)});
    };
    ProcessPointer term = either(0);
    for (unsigned i = 1; i < count; ++i) {
        UnCompiledFormat const joined = format_of({0, 1}, {{3, 0, {{0, 3}, {1, 3}}}});
        term = construct("Chain" + std::to_string(i), {term, either(i)}, always({joined}));
    }
    return term;
}

TEST(MachineRun, what_a_machine_needs_before_its_first_states_is_watched_too) {
    constexpr std::uint64_t mib = 1 << 20;
    constexpr std::chrono::milliseconds watched(100);
    auto const start = std::chrono::steady_clock::now;
    auto begin = start();
    auto const after_a_while = [&](Progress const&) { return start() - begin < watched; };
    struct {
        char const* what;
        ProcessPointer term;
        std::uint64_t memory;
        Watch progress;
        Outcome outcome;
    } const rows[] = {
        {"flattening meets the limit", chain(20), 60 * mib, nullptr, Outcome::memory_limit},
        {"flattening hears", chain(20), 0, after_a_while, Outcome::interrupted},
        {"one state has too many successors", together(fan(1'000), 2), 20 * mib, nullptr,
         Outcome::memory_limit},
        {"more successors than can be counted", together(fan(1'024), 7), 0, nullptr,
         Outcome::memory_limit},
    };
    for (auto const& row : rows) {
        for (unsigned const threads : {1U, 3U}) {
            std::uint64_t const held = resident_bytes();
            std::uint64_t const peak = peak_resident_bytes();
            begin = start();
            RunOptions const options{
                {no_state, row.memory == 0 ? 0 : held + row.memory, row.progress}, true, threads};
            auto const found = explore_term(row.term, options);
            EXPECT_EQ(found.run.outcome, row.outcome) << row.what;
            EXPECT_EQ(found.run.refusal, "") << row.what;
            EXPECT_EQ(found.run.transition_count, 0U) << row.what;
            EXPECT_LT(start() - begin, watched * 20) << row.what;
            if (row.memory != 0) {
                EXPECT_LE(peak_resident_bytes(), std::max(peak, held + 2 * row.memory)) << row.what;
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
        Watch progress;
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
        {"interrupted while compiled", long_compiled, 0, give_up, "", Outcome::interrupted},
        {"an event of a leaf",
         construct("C", {ring("c", 1, most_event + 1)}, always({leads_to(4, 0)})), 0, nullptr,
         "it has an event whose number is above 2147483647", Outcome::complete},
        {"an event of a construct",
         construct("C", {a},
                   always({format_of({0}, {{4, 0, {{0, 3}}}}), leads_to(most_event + 1, 0)})),
         0, nullptr, "it has an event whose number is above 2147483647", Outcome::complete},
    };
    for (auto const& row : rows) {
        RunOptions options;
        options.max_memory = row.max_memory;
        options.progress = row.progress;
        MachineExploration const found = explore_by_machine(row.term, source, options);
        EXPECT_EQ(found.run.refusal, row.refusal) << row.what;
        EXPECT_EQ(found.run.outcome, row.outcome) << row.what;
        EXPECT_EQ(found.machine, nullptr) << row.what;
        EXPECT_EQ(found.tables, nullptr) << row.what;
    }
}

/// Format i runs the first argument and i groups of three larger ones; 9 leads to the next format.
/// So the states become wider while there are narrow ones around.
ProcessPointer growing() {
    std::vector<ProcessPointer> arguments{leaf("a", {{{3, 1}}, {{3, 2}}, {{3, 0}, {4, 0}}})};
    std::vector<unsigned> active{0};
    std::vector<PlainRule> rules{{3, 0, {{0, 3}}}, {9, 1, {{0, 4}}}};
    std::vector<UnCompiledFormat> formats{format_of(active, rules)};
    for (unsigned format = 1; format < 5; ++format) {
        unsigned const first = 3 * format - 2;
        for (unsigned argument = first; argument < first + 3; ++argument) {
            arguments.push_back(ring("r" + std::to_string(argument), 600, 5));
            active.push_back(argument);
        }
        rules.push_back({4 + format, format, {{first, 5}, {first + 1, 5}, {first + 2, 5}}});
        for (PlainRule& rule : rules) {
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
        ConfigurationTables wide_already(*machine);
        RunOptions options;
        options.max_states = row.max_states;
        ASSERT_EQ(run(wide_already, options).refusal, "");
        auto const wanted = run(wide_already, options);
        ASSERT_EQ(wanted.state_count, row.grows ? row.max_states : 4096U);
        ASSERT_EQ(wide_already.met(), row.grows ? 5U : 1U);
        Rows const wanted_rows = rows_of(wanted.lts);
        for (auto const& [threads, most_plain_words] :
             {std::pair{1U, 4U}, {1U, 1U}, {1U, 0U}, {2U, 4U}, {2U, 0U}, {4U, 1U}}) {
            ConfigurationTables tables(*machine);
            EXPECT_EQ(tables.width() < wide_already.width(), row.grows) << "nothing to widen";
            options.threads = threads;
            Cut cut;
            cut.most_plain_words = most_plain_words;
            auto const found = run(tables, options, cut);
            std::string const what = row.what + std::string(", ") + std::to_string(threads) +
                                     " threads, plain up to " + std::to_string(most_plain_words);
            EXPECT_EQ(found.outcome, wanted.outcome) << what;
            EXPECT_EQ(found.state_count, wanted.state_count) << what;
            EXPECT_EQ(found.transition_count, wanted.transition_count) << what;
            EXPECT_TRUE(rows_of(found.lts) == wanted_rows) << what;
            ASSERT_EQ(found.states->width(), wanted.states->width()) << what;
            for (StateNumber state = 0; state < found.state_count; ++state) {
                ASSERT_EQ(found.states->words(state), wanted.states->words(state)) << what;
            }
            ConfigurationTables narrow_again(*machine);
            RunOptions counting = options;
            counting.keep_transitions = false;
            auto const counted = run(narrow_again, counting, cut);
            EXPECT_EQ(counted.outcome, wanted.outcome) << what;
            EXPECT_EQ(counted.state_count, wanted.state_count) << what;
            EXPECT_EQ(counted.transition_count, wanted.transition_count) << what;
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
    EXPECT_EQ(leaves_in(found, 1), (Numbers{0, 1, 2}));
    EXPECT_EQ(leaves_in(found, 2), (Numbers{2, 1}));
}

} // namespace
} // namespace Calder::StateSpace
