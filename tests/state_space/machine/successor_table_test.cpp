#include "state_space/machine/run/successor_table.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>

#include <random>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

struct Step {
    bool operator==(Step const&) const = default;

    unsigned event;
    Word successor;
    bool can_repeat;
};

TEST(MachineSuccessorTable, marks_the_steps_that_another_rule_or_choice_may_report_too) {
    Leaf const ring(nullptr, lts_of({{{3, 1}, {4, 0}}, {{3, 0}}}));
    Leaf const fork(nullptr, lts_of({{{3, 0}, {3, 1}}, {}}));
    Layout const rings({&ring, &ring}, 0);
    Layout const before({&fork}, 32);
    Layout const after({}, 32);
    struct {
        char const* what;
        Layout const& layout;
        FlatRules flat;
        Layout const* target;
        std::vector<Step> steps;
    } const rows[] = {
        {"a slot of their own",
         rings,
         {{{3, 0, 0, 1, none}, {3, 0, 1, 1, none}}, {{0, 3}, {1, 3}}, {}},
         nullptr,
         {{3, 1, false}, {3, 2, false}}},
        {"what may change nothing",
         rings,
         {{{4, 0, 0, 1, none}, {4, 0, 1, 1, none}}, {{0, 4}, {1, 4}}, {}},
         nullptr,
         {{4, 0, true}, {4, 0, true}}},
        {"the only rule of its event",
         rings,
         {{{4, 0, 0, 1, none}}, {{0, 4}}, {}},
         nullptr,
         {{4, 0, false}}},
        {"two rules that change one slot",
         rings,
         {{{5, 0, 0, 1, none}, {5, 0, 1, 2, none}}, {{0, 3}, {0, 3}, {1, 4}}, {}},
         nullptr,
         {{5, 1, true}, {5, 1, true}}},
        {"one rule that drops what it moved",
         before,
         {{{5, 1, 0, 1, 0}}, {{0, 3}}, {}},
         &after,
         {{5, 1, true}, {5, 1, true}}},
    };
    ExplorationOptions const unlimited;
    SearchMonitor monitor(unlimited, SearchMonitor::longest_for_machines);
    for (auto const& row : rows) {
        std::vector const targets(row.flat.rules.size(), SuccessorTable::Target{row.target, 1});
        SuccessorTable const table(row.layout, row.flat, targets, monitor);
        Steps steps;
        std::vector<StateNumber> scratch;
        Word const start = 0;
        table.append_successors(&start, steps, scratch);
        std::vector<Step> found;
        for (std::size_t step = 0; step < steps.size(); ++step) {
            found.push_back({steps.event(step), *steps.words(step), steps.can_repeat(step)});
        }
        EXPECT_EQ(found, row.steps) << row.what;
    }
}

TEST(MachineLeaf, finds_successors_as_the_rows_have_them) {
    struct {
        unsigned states, events, degree;
        bool is_deterministic, is_dense;
    } const rows[] = {
        {40, 5, 3, true, true}, {40, 5, 9, false, true}, {20'000, 2'000, 2, true, false}};
    for (auto const& row : rows) {
        std::mt19937 random(5);
        Rows graph(row.states);
        for (auto& transitions : graph) {
            auto const first = static_cast<unsigned>(random() % row.events);
            for (unsigned i = 0; i < row.degree; ++i) {
                unsigned const event = row.is_deterministic ? first + i : first * i + i % 2;
                transitions.emplace_back(3 + event % row.events, random() % row.states);
            }
        }
        auto const system = lts_of(graph); // each transition once
        Leaf const leaf(nullptr, system);
        auto const reference = [&](StateNumber state, unsigned event) {
            std::vector<StateNumber> targets;
            for (Transition const& step : system.transitions(state)) {
                if (step.event == event) {
                    targets.push_back(step.target);
                }
            }
            return targets;
        };
        for (Leaf::Event const& event : leaf.events()) {
            bool is_deterministic = true;
            bool has_loop = false;
            for (StateNumber state = 0; state < std::min(40U, row.states); ++state) {
                auto const wanted = reference(state, event.event);
                auto const found = leaf.successors(state, leaf.index_of(event.event));
                ASSERT_EQ(std::vector<StateNumber>(found.begin(), found.end()), wanted);
                is_deterministic = is_deterministic && wanted.size() <= 1;
                has_loop = has_loop || std::count(wanted.begin(), wanted.end(), state) > 0;
            }
            if (row.states <= 40) {
                EXPECT_EQ(event.is_deterministic, is_deterministic);
                EXPECT_EQ(event.has_loop, has_loop);
            }
            EXPECT_EQ(event.only_successor != nullptr, row.is_dense && event.is_deterministic);
        }
    }
}

} // namespace
} // namespace Calder::StateSpace
