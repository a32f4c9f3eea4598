#include "tests/state_space/machine/fake_construct.h"

#include <gtest/gtest.h>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using namespace Testing;

using Events = std::vector<unsigned>;

Events events_of(BitSet const& set) {
    return {set.begin(), set.end()};
}

TEST(MachineCompile, the_alphabet_is_what_the_rules_that_can_fire_perform) {
    struct {
        char const* what;
        std::vector<UnCompiledFormat> formats; // over arguments that do 3 and 4, and 4 and 5
        Events alphabet;
    } const rows[] = {
        {"no rules", {format_of({0, 1}, {})}, {}},
        {"all can fire", {format_of({0, 1}, {{9, 0, {{0, 3}}}, {8, 0, {{1, 5}}}})}, {8, 9}},
        {"an event that the argument lacks", {format_of({0, 1}, {{9, 0, {{0, 5}}}})}, {}},
        {"one of two lacks the event", {format_of({0, 1}, {{9, 0, {{0, 3}, {1, 3}}}})}, {}},
        {"both have the event", {format_of({0, 1}, {{9, 0, {{0, 4}, {1, 4}}}})}, {9}},
        {"the argument does not run", {format_of({1}, {{9, 0, {{0, 3}}}})}, {}},
        {"arguments that run in another order", {format_of({1, 0}, {{9, 0, {{0, 3}}}})}, {9}},
        {"nobody takes part", {format_of({}, {{9, 0, {}}})}, {9}},
        {"named without taking part", {format_of({1}, {{9, 0, {{0, 0}}}})}, {9}},
        {"a format that nothing leads to",
         {format_of({0}, {{7, 0, {{0, 3}}}}), format_of({0}, {{9, 1, {{0, 3}}}})},
         {7}},
        {"a format that only a dead rule leads to",
         {format_of({0}, {{7, 1, {{0, 5}}}}), format_of({0}, {{9, 1, {{0, 3}}}})},
         {}},
        {"formats one after another",
         {format_of({0}, {{7, 2, {{0, 3}}}}), format_of({0}, {{8, 0, {{0, 3}}}}),
          format_of({1}, {{9, 1, {{1, 5}}}})},
         {7, 8, 9}},
    };
    ProcessPointer const a = leaf("a", {{{4, 1}}, {{3, 0}}});
    ProcessPointer const b = leaf("b", {{{4, 1}, {5, 0}}, {}});
    for (auto const& row : rows) {
        auto const machine = machine_of(construct("C", {a, b}, always(row.formats)));
        ASSERT_NE(machine, nullptr) << row.what;
        EXPECT_EQ(events_of(machine->parts[machine->start].alphabet), row.alphabet) << row.what;
    }
}

/// What the first argument does, and what the second does raised by one, but nothing above 9.
Formats raising(Alphabets const& alphabets) {
    Formats formats(1, format_of({0, 1}, {}));
    for (unsigned const event : alphabets[0]) {
        append_rule(formats[0], event, 0, {std::pair(0, event)});
    }
    for (unsigned const event : alphabets[1]) {
        if (event < 9) {
            append_rule(formats[0], event + 1, 0, {std::pair(1, event)});
        }
    }
    return formats;
}

TEST(MachineCompile, alphabets_of_what_recurs_grow_until_they_grow_no_more) {
    NamedProcessSource source;
    ProcessPointer const p = source.reference("P");
    source.define("P", construct("C", {ring("a", 1, 3), source.reference("Q")}, raising));
    source.define("Q", construct("D", {ring("b", 1, 7), p}));
    auto const machine = machine_of(construct("Top", {p}), source);
    ASSERT_NE(machine, nullptr);
    ASSERT_EQ(machine->parts.size(), 5U);
    for (Part const& part : machine->parts) {
        if (part.is_construct()) {
            EXPECT_EQ(events_of(part.alphabet), (Events{3, 4, 5, 6, 7, 8, 9}));
            // Made from the final alphabets, too: what D reads passes through besides its own.
            bool const is_d = static_cast<FakeConstruct const&>(*part.term).name == "D";
            EXPECT_EQ(part.formats.front().rules.size(), is_d ? 8U : 7U);
        }
    }
}

TEST(MachineCompile, equal_leaves_are_one_component) {
    NamedProcessSource source;
    source.define("N", ring("a", 3, 4));
    source.define("M", construct("Inner", {ring("a", 3, 4), ring("b", 2, 5)}));
    ProcessPointer const n = source.reference("N");
    ProcessPointer const m = source.reference("M");
    auto const machine = machine_of(
        construct("Top",
                  {ring("a", 3, 4), m, ring("b", 2, 5),
                   source.process(static_cast<ProcessCompiler::NamedProcess const&>(*m)), n, n}),
        source);
    ASSERT_NE(machine, nullptr);
    std::vector<PartNumber> const wanted{1, 2, 3, 2, 4, 4};
    EXPECT_EQ(machine->parts[machine->start].arguments, wanted);
    EXPECT_EQ(machine->parts[2].arguments, (std::vector<PartNumber>{1, 3}));
    std::vector<StateNumber> sizes;
    for (auto const& leaf : machine->leaves) {
        sizes.push_back(leaf->state_count());
    }
    // The name of a leaf is a state before it.
    EXPECT_EQ(sizes, (std::vector<StateNumber>{3, 2, 4}));
    EXPECT_EQ(events_of(machine->parts[4].alphabet), Events{4});
}

TEST(MachineCompile, a_format_that_passes_one_argument_through_is_recognised) {
    struct {
        char const* what;
        UnCompiledFormat format; // over arguments that do 3 and 4, and 5
        std::uint32_t passed_through;
    } const rows[] = {
        {"all events", format_of({0}, {{3, 1, {{0, 3}}}, {4, 1, {{0, 4}}}}), 0},
        {"the other argument", format_of({1}, {{5, 1, {{1, 5}}}}), 1},
        {"an event is missing", format_of({0}, {{3, 1, {{0, 3}}}}), none},
        {"an event too many",
         format_of({0}, {{3, 1, {{0, 3}}}, {4, 1, {{0, 4}}}, {5, 1, {{0, 5}}}}), none},
        {"an event is renamed", format_of({0}, {{4, 1, {{0, 3}}}, {3, 1, {{0, 4}}}}), none},
        {"leads elsewhere", format_of({0}, {{3, 1, {{0, 3}}}, {4, 0, {{0, 4}}}}), none},
        {"another one runs", format_of({0, 1}, {{3, 1, {{0, 3}}}, {4, 1, {{0, 4}}}}), none},
        {"a rule of its own", format_of({1}, {{5, 1, {{1, 5}}}, {5, 1, {}}}), none},
        {"nothing runs", format_of({}, {}), none},
    };
    ProcessPointer const a = leaf("a", {{{3, 0}, {4, 0}}});
    for (auto const& row : rows) {
        UnCompiledFormat const first = format_of({0, 1}, {{3, 1, {{0, 3}}}});
        auto const machine =
            machine_of(construct("C", {a, ring("b", 1, 5)}, always({first, row.format})));
        std::vector<std::uint32_t> const wanted{none, row.passed_through};
        EXPECT_EQ(machine->parts[machine->start].passed_through, wanted) << row.what;
    }
}

TEST(MachineCompile, only_the_arguments_that_run_take_part) {
    // Behind the end of the list stands what would run, were it not ended.
    auto const shortened = [](Alphabets const&) {
        Formats formats(1, format_of({}, {{7, 0, {{0, 3}}}, {8, 0, {{1, 3}}}, {9, 0, {{2, 3}}}}));
        formats[0].active_components = {0, 1, 2};
        formats[0].active_components.resize(1);
        return formats;
    };
    auto const machine =
        machine_of(construct("C", {ring("a", 1, 3), ring("b", 1, 3), ring("c", 1, 3)}, shortened));
    EXPECT_EQ(events_of(machine->parts[machine->start].alphabet), Events{7});
}

TEST(MachineCompile, a_leaf_of_too_many_states_ends_it) {
    ProcessPointer const term = construct("C", {ring("a", 2, 3), ring("b", 2'000, 3)});
    for (StateNumber const most : {2'000U, 1'999U}) {
        NamedProcessSource const source;
        Compilation const found = compile(make_term_graph(term, source), source, {most});
        bool const is_enough = most == 2'000;
        EXPECT_EQ(found.machine != nullptr, is_enough);
        EXPECT_EQ(found.outcome, is_enough ? Outcome::complete : Outcome::state_limit);
        EXPECT_EQ(found.refusal,
                  is_enough ? "" : "one of its components has more than 1999 states");
    }
}

} // namespace
} // namespace Calder::StateSpace
