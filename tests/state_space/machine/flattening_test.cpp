#include "state_space/machine/flatten/flattening.h"
#include "tests/state_space/machine/fake_construct.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::ProcessPointer;
using namespace Testing;

using Numbers = std::vector<std::uint32_t>;
constexpr std::uint32_t fresh = FlatRules::fresh;

/// (event, who takes part, the sources of the target's slots or nothing when it stays)
using Flat = std::tuple<unsigned, Participants, std::optional<Numbers>>;
constexpr std::nullopt_t stays = std::nullopt;

std::vector<Flat> flat_rules(ProcessPointer const& term) {
    auto const machine = machine_of(term);
    Configurations configurations(*machine);
    Flattening flattening(configurations);
    ExplorationOptions const unlimited;
    SearchMonitor monitor(unlimited, SearchMonitor::longest_for_machines);
    FlatRules const& rules = flattening.rules(configurations.start(), monitor);
    std::vector<Flat> found;
    for (FlatRules::Rule const& rule : rules.rules) {
        auto& [event, participants, sources] =
            found.emplace_back(rule.event, Participants(), stays);
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

// The order decides how states are numbered in files, which no comparison of behaviour sees.
TEST(MachineFlattening, rules_stand_by_event_then_as_they_came_the_last_choice_changing_fastest) {
    ProcessPointer const a = leaf("a", {{{3, 0}, {4, 0}}});
    ProcessPointer const b = leaf("b", {{{3, 0}, {4, 0}}});
    ProcessPointer const inner = construct(
        "Inner", {a, b},
        always({format_of({0, 1}, {{4, 1, {{1, 4}}}, {3, 0, {{0, 3}, {1, 3}}}, {4, 0, {{0, 4}}}}),
                format_of({1, 0}, {{3, 1, {{0, 3}}}})}));
    struct {
        char const* what;
        std::vector<PlainRule> rules; // over c, which does 5, and two of the above
        std::vector<Flat> wanted;
    } const rows[] = {
        {"as they came",
         {{8, 0, {{1, 3}, {0, 5}}}, {7, 1, {{0, 5}}}, {7, 0, {}}},
         {{7, {{0, 5}}, Numbers{1, 2}}, {7, {}, stays}, {8, {{1, 3}, {2, 3}, {0, 5}}, stays}}},
        {"choices",
         {{9, 0, {{1, 4}, {2, 4}}}},
         {{9, {{2, 4}, {4, 4}}, Numbers{0, 2, 1, 4, 3}},
          {9, {{2, 4}, {3, 4}}, Numbers{0, 2, 1, 3, 4}},
          {9, {{1, 4}, {4, 4}}, Numbers{0, 1, 2, 4, 3}},
          {9, {{1, 4}, {3, 4}}, stays}}},
        {"twice",
         {{9, 0, {{0, 5}}}, {9, 0, {{0, 5}}}, {9, 1, {{0, 5}}}, {9, 1, {{0, 5}}}, {9, 2, {{0, 5}}}},
         {{9, {{0, 5}}, stays}, {9, {{0, 5}}, Numbers{1, 2}}, {9, {{0, 5}}, Numbers{fresh}}}},
        {"twice, once named without taking part",
         {{9, 0, {{0, 5}}}, {9, 0, {{0, 5}, {1, 0}}}},
         {{9, {{0, 5}}, stays}}},
        {"an event that is missing", {{9, 0, {{0, 5}, {1, 5}}}, {9, 0, {{0, 3}}}}, {}},
    };
    for (auto const& row : rows) {
        ProcessPointer const term =
            construct("Outer", {leaf("c", {{{5, 0}}}), inner, inner, leaf("d", {{{6, 0}}})},
                      always({format_of({0, 1, 2}, row.rules), format_of({1}, {{6, 1, {{1, 3}}}}),
                              format_of({3}, {{7, 2, {{3, 6}}}})}));
        EXPECT_EQ(flat_rules(term), row.wanted) << row.what;
    }
}

} // namespace
} // namespace Calder::StateSpace
