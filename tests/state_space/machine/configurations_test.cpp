#include "state_space/machine/configurations.h"
#include "tests/state_space/machine/fake_construct.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using Testing::always;
using Testing::construct;
using Testing::format_of;
using Testing::leaf;
using Testing::machine_of;
using Testing::Participants;
using Testing::ring;
using Testing::UnCompiledFormat;

using Numbers = std::vector<std::uint32_t>;
constexpr std::uint32_t fresh = FlatRules::fresh;

/// (event, who takes part, the sources of the target's slots or nothing when it stays)
using Flat = std::tuple<unsigned, Participants, std::optional<Numbers>>;
constexpr std::nullopt_t stays = std::nullopt;

std::vector<Flat> flat_rules(Configurations& configurations, ConfigurationNumber number) {
    FlatRules const& rules = configurations.rules(number);
    std::vector<Flat> found;
    for (FlatRules::Rule const& rule : rules.rules) {
        auto& [event, participants, sources] = found.emplace_back();
        event = rule.event;
        for (Participant const& participant : rules.participants_of(rule)) {
            participants.emplace_back(participant.slot, participant.event);
        }
        if (!rule.stays()) {
            auto const first = rules.sources.begin() + rule.first_source;
            sources.emplace(first, first + configurations.slot_count(rule.target));
        }
    }
    return found;
}

/// The targets of the rules, where they do not stay.
std::vector<ConfigurationNumber> targets(Configurations& configurations,
                                         ConfigurationNumber number) {
    std::vector<ConfigurationNumber> found;
    for (FlatRules::Rule const& rule : configurations.rules(number).rules) {
        if (!rule.stays()) {
            found.push_back(rule.target);
        }
    }
    return found;
}

ProcessPointer loop(std::string name, std::vector<unsigned> const& events) {
    Testing::Rows rows(1);
    for (unsigned const event : events) {
        rows[0].emplace_back(event, 0);
    }
    return leaf(std::move(name), std::move(rows));
}

TEST(MachineConfigurations, a_nested_tree_is_flattened) {
    ProcessPointer const inner = construct(
        "Inner", {loop("a", {3, 4}), loop("b", {3, 4})},
        always({format_of({0, 1}, {{3, 0, {{0, 3}, {1, 3}}}, {4, 0, {{0, 4}}}, {4, 1, {{1, 4}}}}),
                format_of({1, 0}, {{3, 1, {{0, 3}}}})}));
    ProcessPointer const term = construct("Outer", {loop("c", {5}), inner, loop("d", {6})},
                                          always({format_of({0, 1}, {{8, 0, {{1, 3}, {0, 5}}},
                                                                     {7, 1, {{0, 5}}},
                                                                     {9, 0, {{1, 4}, {0, 5}}},
                                                                     {9, 1, {{1, 4}}}}),
                                                  format_of({2, 1}, {{7, 1, {{2, 6}}}})}));
    auto const machine = machine_of(term);
    Configurations configurations(*machine);
    ConfigurationNumber const start = configurations.start();
    EXPECT_EQ(configurations.slot_count(start), 3U);
    EXPECT_EQ(configurations.components(start), (Numbers{0, 2, 3})); // d is the second part
    std::vector<Flat> const wanted{
        {7, {{0, 5}}, Numbers{fresh, 1, 2}}, {8, {{1, 3}, {2, 3}, {0, 5}}, stays},
        {9, {{1, 4}, {0, 5}}, stays},        {9, {{2, 4}, {0, 5}}, Numbers{0, 2, 1}},
        {9, {{1, 4}}, Numbers{fresh, 1, 2}}, {9, {{2, 4}}, Numbers{fresh, 2, 1}},
    };
    EXPECT_EQ(flat_rules(configurations, start), wanted);
    auto const after = targets(configurations, start);
    ASSERT_EQ(after.size(), 4U);
    EXPECT_EQ(configurations.components(after[0]), (Numbers{1, 2, 3}));
    EXPECT_EQ(configurations.components(after[1]), (Numbers{0, 3, 2}));
    EXPECT_EQ(configurations.components(after[3]), (Numbers{1, 3, 2}));
    EXPECT_EQ(after[0], after[2]) << "the same tree by another event";
    EXPECT_EQ(flat_rules(configurations, after[0]), (std::vector<Flat>{{7, {{0, 6}}, stays}}));
}

TEST(MachineConfigurations, each_choice_of_rules_inside_gives_a_rule_and_the_last_changes_fastest) {
    auto const either = [](std::string const& name) {
        return construct(name, {loop(name + "a", {3}), loop(name + "b", {3})},
                         always({format_of({0, 1}, {{4, 0, {{1, 3}}}, {4, 0, {{0, 3}}}})}));
    };
    auto const machine =
        machine_of(construct("Both", {either("x"), either("y")},
                             always({format_of({0, 1}, {{5, 0, {{0, 4}, {1, 4}}}})})));
    Configurations configurations(*machine);
    std::vector<Flat> const wanted{{5, {{1, 3}, {3, 3}}, stays},
                                   {5, {{1, 3}, {2, 3}}, stays},
                                   {5, {{0, 3}, {3, 3}}, stays},
                                   {5, {{0, 3}, {2, 3}}, stays}};
    EXPECT_EQ(flat_rules(configurations, configurations.start()), wanted);
}

TEST(MachineConfigurations, only_rules_that_can_fire_are_kept_once_and_by_event) {
    struct {
        char const* what;
        UnCompiledFormat format; // over arguments that do 3 and 4, and 4 and 5
        std::vector<Flat> wanted;
    } const rows[] = {
        {"by event, then as they came",
         format_of({0, 1}, {{9, 0, {{1, 5}}}, {7, 0, {{1, 4}}}, {9, 0, {{0, 3}}}, {8, 0, {}}}),
         {{7, {{1, 4}}, stays}, {8, {}, stays}, {9, {{1, 5}}, stays}, {9, {{0, 3}}, stays}}},
        {"event 0 takes no part",
         format_of({0, 1}, {{9, 0, {{0, 0}, {1, 4}}}, {8, 0, {{0, 0}}}}),
         {{8, {}, stays}, {9, {{1, 4}}, stays}}},
        {"event 0 of one that does not run",
         format_of({1}, {{9, 0, {{0, 0}, {1, 4}}}}),
         {{9, {{0, 4}}, stays}}},
        {"one that does not run",
         format_of({1}, {{9, 0, {{1, 4}, {0, 4}}}, {9, 0, {{1, 5}}}}),
         {{9, {{0, 5}}, stays}}},
        {"an event that is missing",
         format_of({0, 1}, {{9, 0, {{0, 4}, {1, 3}}}, {9, 0, {{0, 5}}}}),
         {}},
        {"twice",
         format_of({0, 1}, {{9, 0, {{0, 3}}}, {9, 0, {{0, 3}}}, {9, 0, {{0, 4}}}}),
         {{9, {{0, 3}}, stays}, {9, {{0, 4}}, stays}}},
        {"twice, once named without taking part",
         format_of({0, 1}, {{9, 0, {{0, 3}}}, {9, 0, {{0, 3}, {1, 0}}}}),
         {{9, {{0, 3}}, stays}}},
        {"twice, leaving the format",
         format_of({0, 1}, {{9, 1, {{0, 3}}}, {9, 1, {{0, 3}}}, {9, 2, {{0, 3}}}}),
         {{9, {{0, 3}}, Numbers{1}}, {9, {{0, 3}}, Numbers{fresh, 1}}}},
        {"one event of two that differ in where they lead",
         format_of({0, 1}, {{9, 0, {{0, 3}}}, {9, 3, {{0, 3}}}}),
         {{9, {{0, 3}}, stays}, {9, {{0, 3}}, Numbers{}}}},
    };
    ProcessPointer const a = loop("a", {3, 4});
    ProcessPointer const b = loop("b", {4, 5});
    for (auto const& row : rows) {
        auto const machine = machine_of(
            construct("C", {a, b, loop("c", {6})},
                      always({row.format, format_of({1}, {{9, 1, {{1, 4}}}}),
                              format_of({2, 1}, {{9, 2, {{1, 4}}}}), format_of({}, {})})));
        Configurations configurations(*machine);
        EXPECT_EQ(flat_rules(configurations, configurations.start()), row.wanted) << row.what;
    }
}

TEST(MachineConfigurations, a_format_that_only_lets_an_argument_through_is_left_out) {
    UnCompiledFormat const through = format_of({0}, {{3, 1, {{0, 3}}}});
    auto const machine = machine_of(construct(
        "C", {loop("a", {3}), loop("b", {4})},
        always({format_of({0, 1}, {{3, 1, {{0, 3}}}, {4, 2, {{1, 4}}}, {5, 3, {}}}), through,
                format_of({0}, {{3, 2, {{0, 3}}}}), format_of({0}, {{6, 3, {{0, 3}}}})})));
    Configurations configurations(*machine);
    auto const after = targets(configurations, configurations.start());
    ASSERT_EQ(after.size(), 3U);
    EXPECT_EQ(after[0], after[1]);
    EXPECT_NE(after[0], after[2]);
    EXPECT_EQ(flat_rules(configurations, after[0]), (std::vector<Flat>{{3, {{0, 3}}, stays}}));
    EXPECT_EQ(flat_rules(configurations, after[2]), (std::vector<Flat>{{6, {{0, 3}}, stays}}));
}

TEST(MachineConfigurations, all_that_stopped_is_one_configuration) {
    auto const stopping = [](std::string const& name, unsigned event) {
        return construct(name, {loop("a", {3})},
                         always({format_of({0}, {{event, 1, {{0, 3}}}}), format_of({}, {})}));
    };
    auto const machine = machine_of(construct(
        "C", {stopping("x", 4), stopping("y", 5)},
        always({format_of({}, {{6, 1, {}}, {7, 2, {}}}), format_of({0}, {{4, 1, {{0, 4}}}}),
                format_of({1}, {{5, 2, {{1, 5}}}})})));
    Configurations configurations(*machine);
    auto const after = targets(configurations, configurations.start());
    ASSERT_EQ(after.size(), 2U);
    auto const end = targets(configurations, after[0]); // x itself, that is let through
    ASSERT_EQ(end.size(), 1U);
    EXPECT_EQ(end, targets(configurations, after[1]));
    EXPECT_EQ(configurations.slot_count(end[0]), 0U);
    EXPECT_TRUE(configurations.rules(end[0]).rules.empty());
    EXPECT_TRUE(configurations.components(end[0]).empty());
}

TEST(MachineConfigurations, a_tree_that_recurs_is_the_same_configuration) {
    NamedProcessSource source;
    ProcessPointer const p = source.reference("P");
    // The argument 0 runs until, by one of its 4, the whole begins again.
    auto const sequence = [](Testing::Alphabets const& alphabets) {
        Testing::Formats formats(
            2, format_of({0}, {{3, 0, {{0, 3}}}, {4, 0, {{0, 4}}}, {4, 1, {{0, 4}}}}));
        make_identity_format(formats, 1, alphabets[1], 1);
        return formats;
    };
    source.define("P", construct("C", {loop("a", {3, 4}), p}, sequence));
    auto const machine = machine_of(construct("Top", {loop("b", {5}), p}), source);
    Configurations configurations(*machine);
    ConfigurationNumber const start = configurations.start();
    EXPECT_EQ(targets(configurations, start), std::vector<ConfigurationNumber>{start});
    std::vector<Flat> const wanted{{3, {{1, 3}}, stays},
                                   {4, {{1, 4}}, stays},
                                   {4, {{1, 4}}, Numbers{0, fresh}},
                                   {5, {{0, 5}}, stays}};
    EXPECT_EQ(flat_rules(configurations, start), wanted);
}

TEST(MachineConfigurations, a_tree_without_end_is_refused) {
    NamedProcessSource source;
    ProcessPointer const p = source.reference("P");
    source.define("P", construct("C", {loop("a", {3}), p}));
    auto const machine = machine_of(p, source);
    Configurations configurations(*machine);
    EXPECT_THROW(configurations.start(), MachineRefusal);
}

} // namespace
} // namespace Calder::StateSpace
