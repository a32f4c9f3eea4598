#include "state_space/deadlock.h"
#include "state_space/machine/machine_exploration.h"
#include "state_space/machine/machine_refusal.h"
#include "tests/pins/vector_exploration.h"
#include "tests/script/reading.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace Calder::Pins {
namespace {

using namespace Testing;
using Script::Testing::script_of;

/// The process defined last.
Model model_of(Script::Script const& script) {
    return make_model(script.definitions().back().term, script.processes(), {});
}

std::string names(VectorMachine const& machine, std::vector<std::uint32_t> const& columns) {
    std::string text;
    for (std::uint32_t const column : columns) {
        text += (text.empty() ? "" : " ") + machine.columns()[column].name;
    }
    return text;
}

/// A line for the columns, then one for each group: what it does, the columns that it reads and those
/// that it writes.
std::string text_of(Script::Script const& script) {
    Model const model = model_of(script);
    VectorMachine const& machine = *model.vectors;
    std::vector<std::set<std::string>> events(machine.groups().size());
    Reached const reached = *explore_vectors(machine, 100'000);
    EXPECT_EQ(reached.wrong, "");
    for (State const& state : reached.states) {
        VectorMachine::Scratch scratch;
        TakenSteps taken{{}, {}, state.size()};
        machine.for_all_steps(state.data(), scratch, take_into(taken));
        for (std::size_t i = 0; i < taken.steps.size(); ++i) {
            unsigned const event = machine.events()[static_cast<std::size_t>(taken.steps[i].label)];
            events[static_cast<std::size_t>(taken.groups[i])].insert(
                script.session().event_object(event)->name());
        }
    }
    std::vector<std::uint32_t> all(machine.columns().size());
    for (std::uint32_t column = 0; column < all.size(); ++column) {
        all[column] = column;
    }
    std::string text = names(machine, all) + "\n";
    for (std::size_t group = 0; group < events.size(); ++group) {
        for (std::string const& event : events[group]) {
            text += event + " ";
        }
        text += "(" + names(machine, machine.groups()[group].reads) + ") -> (" +
                names(machine, machine.groups()[group].writes) + ")\n";
    }
    return text;
}

struct Row {
    char const* what;
    char const* script;
    char const* expected;
};

// clang-format off
Row const rows[] = {
    {"one process is one column", "channel a P = a -> P",
     "leaf0\n"
     "a () -> ()\n"},
    {"each component has a column, and only those that take part are touched",
     "channel a, b, c P = a -> b -> P Q = b -> c -> Q R = P [|{b}|] Q ||| P",
     "leaf0 leaf1 leaf2\n"
     "a (leaf0) -> (leaf0)\n"
     "b (leaf0 leaf1) -> (leaf0 leaf1)\n"
     "c (leaf1) -> (leaf1)\n"
     "a b (leaf2) -> (leaf2)\n"},
    {"rules of the same columns are one group",
     "channel a : {0..3} channel b P = a?x -> b -> P Q = P ||| P",
     "leaf0 leaf1\n"
     "a.0 a.1 a.2 a.3 b (leaf0) -> (leaf0)\n"
     "a.0 a.1 a.2 a.3 b (leaf1) -> (leaf1)\n"},
    {"who always does the same is not read, and who never changes is not written",
     "channel set : {0, 1} channel get : {0, 1} channel idle "
     "CELL(v) = set?w -> CELL(w) [] get.v -> CELL(v) USER = set.1 -> get.1 -> USER [] idle -> USER "
     "P = CELL(0) [|{|set, get|}|] USER",
     "leaf0 leaf1\n"
     "set.1 (leaf1) -> (leaf0 leaf1)\n"
     "get.1 (leaf0 leaf1) -> (leaf1)\n"
     "idle (leaf1) -> ()\n"},
    {"what two components do to the same end is one step, told by one group",
     "channel a, b P = a -> P [] b -> STOP Q = P ||| P",
     "leaf0 leaf1\n"
     "b (leaf0) -> (leaf0)\n"
     "a (leaf0 leaf1) -> ()\n"
     "b (leaf1) -> (leaf1)\n"},
    {"what was hidden of the same two is one group, though each step is told once",
     "channel a, b, c P = a -> c -> P [] b -> c -> P Q = (P [|{a, b}|] (a -> b -> STOP)) \\ {a, b}",
     "leaf0 leaf1\n"
     "c (leaf0) -> (leaf0)\n"
     "tau (leaf0 leaf1) -> (leaf0 leaf1)\n"},
    {"what two events do to the same end is two steps, though either is told once",
     "channel a, b, c, d P = a -> STOP [] b -> STOP [] c -> STOP [] d -> STOP "
     "Q = (P ||| P)[[b <- a, d <- c]]",
     "leaf0 leaf1\n"
     "a c (leaf0) -> (leaf0)\n"
     "a c (leaf1) -> (leaf1)\n"},
    {"the end has a column, which the last steps alone write",
     "channel a P = a -> SKIP Q = P ||| P",
     "leaf0 leaf1 ended\n"
     "a (leaf0) -> (leaf0)\n"
     "tick (leaf0 leaf1) -> (leaf0 leaf1 ended)\n"
     "a (leaf1) -> (leaf1)\n"},
    {"parts that change have configurations of their own, which add up",
     "channel a, b, c P = (a -> SKIP ||| b -> SKIP) ; c -> P Q = P ||| P",
     "configuration0 leaf0 leaf1 configuration1 leaf2 leaf3\n"
     "c (configuration0) -> (configuration0)\n"
     "a (configuration0 leaf0) -> (leaf0)\n"
     "tau (configuration0 leaf0 leaf1) -> (configuration0 leaf0 leaf1)\n"
     "b (configuration0 leaf1) -> (leaf1)\n"
     "c (configuration1) -> (configuration1)\n"
     "a (configuration1 leaf2) -> (leaf2)\n"
     "tau (configuration1 leaf2 leaf3) -> (configuration1 leaf2 leaf3)\n"
     "b (configuration1 leaf3) -> (leaf3)\n"},
    {"a column stays with its leaf while the formats change",
     "channel a, b, c, go P = a -> c -> P Q = b -> c -> SKIP S = go -> P R = (P ||| Q) [|{c}|> (P ||| S)",
     "configuration0 leaf0 leaf1\n"
     "a (configuration0 leaf0) -> (leaf0)\n"
     "a c (configuration0 leaf0) -> (leaf0)\n"
     "c (configuration0 leaf0 leaf1) -> (configuration0 leaf0 leaf1)\n"
     "a c go (configuration0 leaf1) -> (leaf1)\n"
     "b (configuration0 leaf1) -> (leaf1)\n"},
    {"who starts afresh takes the column where the same leaf ran before, or a free one",
     "channel a, b, stop P = a -> b -> P Q = b -> a -> Q R = (P ||| Q) /\\ stop -> (Q ||| P)",
     "configuration0 leaf0 leaf1\n"
     "a b (configuration0 leaf0) -> (leaf0)\n"
     "a b (configuration0 leaf0) -> (leaf0)\n"
     "stop (configuration0) -> (configuration0 leaf0 leaf1)\n"
     "a b (configuration0 leaf1) -> (leaf1)\n"
     "a b (configuration0 leaf1) -> (leaf1)\n"},
    {"who only looks on while the formats change is not touched",
     "channel a, b, c P = a -> b -> P Q = (P ||| P) [] c -> STOP",
     "configuration0 leaf0 leaf1 leaf2\n"
     "a b (configuration0 leaf0) -> (leaf0)\n"
     "c (configuration0 leaf2) -> (configuration0 leaf0 leaf1 leaf2)\n"
     "a (configuration0 leaf0) -> (configuration0 leaf0 leaf2)\n"
     "a b (configuration0 leaf1) -> (leaf1)\n"
     "a (configuration0 leaf1) -> (configuration0 leaf1 leaf2)\n"
     "(configuration0 leaf2) -> (leaf2)\n"},
    {"nor is a column in which nobody ran before or runs afterwards",
     "channel a, b, c, d P = (a -> SKIP ||| b -> SKIP) ; c -> d -> P",
     "configuration0 leaf0 leaf1\n"
     "c (configuration0) -> (configuration0)\n"
     "d (configuration0) -> (configuration0)\n"
     "a (configuration0 leaf0) -> (leaf0)\n"
     "tau (configuration0 leaf0 leaf1) -> (configuration0 leaf0 leaf1)\n"
     "b (configuration0 leaf1) -> (leaf1)\n"},
    {"what cannot follow the end in its configuration does not take it back",
     "channel a, b, c P = (a -> SKIP ||| b -> SKIP) ; c -> SKIP",
     "configuration0 leaf0 leaf1 ended\n"
     "a (configuration0 leaf0) -> (leaf0)\n"
     "c (configuration0 leaf0) -> (leaf0)\n"
     "tau (configuration0 leaf0 leaf1) -> (configuration0 leaf0 leaf1)\n"
     "tick (configuration0 leaf0) -> (leaf0 ended)\n"
     "b (configuration0 leaf1) -> (leaf1)\n"},
    {"nor what waits for another configuration than the end leads to",
     "channel a, b, c P = (a -> SKIP ||| b -> SKIP) /\\ c -> STOP",
     "configuration0 leaf0 leaf1 leaf2 ended\n"
     "a (configuration0 leaf0) -> (leaf0)\n"
     "c (configuration0 leaf2) -> (configuration0 leaf0 leaf1 leaf2)\n"
     "tick (configuration0 leaf0 leaf1) -> (configuration0 leaf0 leaf1 leaf2 ended)\n"
     "b (configuration0 leaf1) -> (leaf1)\n"
     "(configuration0 leaf2) -> (leaf2)\n"},
    {"a process that can do nothing at all still has a column",
     "channel a P = STOP [|{a}|] STOP",
     "leaf0 leaf1\n"},
};
// clang-format on

TEST(Columns, are_touched_by_no_more_groups_than_need_be) {
    for (Row const& row : rows) {
        EXPECT_EQ(text_of(*script_of(row.script)), row.expected) << row.what;
    }
}

/// Of so many that change nothing, not every two are compared: here one waits for another configuration
/// than all others.
TEST(Columns, have_each_step_once_however_many_do_the_same) {
    auto const script = script_of("channel a, b, go P = a -> P [] b -> STOP "
                                  "Q = P /\\ go -> ((||| i : {1..300} @ P) [|{b}|] STOP)");
    auto const reached = explore_vectors(*model_of(*script).vectors, 10);
    ASSERT_TRUE(reached);
    EXPECT_EQ(reached->wrong, "");
    EXPECT_EQ(reached->transitions, 5U);
}

/// As `calder explore` counts them, and finds deadlocks.
TEST(Columns, of_every_example_have_as_many_states_and_transitions) {
    unsigned compared = 0;
    for (auto const& file : std::filesystem::directory_iterator(CALDER_EXAMPLES)) {
        if (file.path().extension() != ".csp") {
            continue;
        }
        std::stringstream text;
        text << std::ifstream(file.path()).rdbuf();
        auto const script = script_of(text.str());
        auto const& definition = script->definitions().back();
        auto const explored =
            StateSpace::explore_by_machine(definition.term, script->processes(), {});
        auto const reached = explore_vectors(*model_of(*script).vectors, 100'000);
        ASSERT_TRUE(reached) << file.path();
        EXPECT_EQ(reached->wrong, "") << file.path();
        EXPECT_EQ(reached->states.size(), explored.run.state_count) << file.path();
        EXPECT_EQ(reached->transitions, explored.run.transition_count) << file.path();
        EXPECT_EQ(reached->has_deadlock, StateSpace::find_deadlock(explored.run.lts).has_value())
            << file.path();
        ++compared;
    }
    EXPECT_GT(compared, 10U);
}

TEST(Columns, stand_for_states_of_the_machine_alone) {
    struct WordsRow {
        char const* what;
        State state;
        bool is_one;
    };
    WordsRow const states[] = {
        {"the start", {0, 0, 0, 0}, true},
        {"too few columns", {0, 0, 0}, false},
        {"a number below all", {0, -1, 0, 0}, false},
        {"a state that the leaf does not have", {0, 1, 0, 0}, false},
        {"a configuration that there is not", {2, 0, 0, 0}, false},
        {"a column that is not used in the configuration", {0, 0, 1, 0}, false},
        {"a configuration that the rest of the machine never allows", {1, 0, 0, 0}, false},
    };
    auto const script = script_of("channel a, b, go P = a -> P "
                                  "Q = (P /\\ go -> (P ||| b -> P)) [|{go}|] STOP");
    Model const model = model_of(*script);
    StateSpace::ExplorationOptions const unbounded;
    StateSpace::SearchMonitor monitor(unbounded, StateSpace::SearchMonitor::longest_for_machines);
    for (auto const& [what, state, is_one] : states) {
        EXPECT_EQ(model.vectors->words_of(state, monitor).has_value(), is_one) << what;
    }
}

std::string refusal_of(char const* text) {
    auto const script = script_of(text);
    try {
        static_cast<void>(model_of(*script));
    } catch (StateSpace::MachineRefusal const& refusal) {
        return refusal.what();
    }
    return "";
}

/// Of 2^64 steps none would be left of a product that has 64 bits, and that would be a deadlock.
TEST(Columns, a_state_of_more_steps_than_can_be_counted_is_refused) {
    struct Case {
        char const* what;
        char const* script;
        bool is_refused;
    };
    std::string const process = "channel a, b P = a -> P [] a -> STOP ";
    Case const cases[] = {
        {"2^8", "Q = [|{a}|] i : {1..8} @ P", false},
        {"2^31", "Q = [|{a}|] i : {1..31} @ P", true},
        {"2^64", "Q = [|{a}|] i : {1..64} @ P", true},
        {"none, since one cannot", "Q = ([|{a}|] i : {1..64} @ P) [|{a}|] b -> a -> STOP", false},
    };
    for (Case const& row : cases) {
        auto const script = script_of(process + row.script);
        Model const model = model_of(*script);
        VectorMachine::Scratch scratch;
        State const state = model.vectors->start();
        TakenSteps taken{{}, {}, state.size()};
        bool is_refused = false;
        try {
            model.vectors->for_all_steps(state.data(), scratch, take_into(taken));
        } catch (StateSpace::MachineRefusal const&) {
            is_refused = true;
        }
        EXPECT_EQ(is_refused, row.is_refused) << row.what;
    }
}

TEST(Columns, there_is_a_reason_where_there_are_none) {
    // Which of the two comes first depends on how much stack the build takes for a level.
    std::string const by_terms =
        "it comes back inside arguments that do not allow recursion; term by term";
    std::string const reason = refusal_of("channel a P = a -> (P ||| SKIP)");
    EXPECT_TRUE(reason == by_terms + " it has more than 5000 states" ||
                reason == by_terms + ", the process nests too deeply for the stack")
        << reason;
    EXPECT_EQ(refusal_of("channel a "
                         "P(n) = if n == 5000 then STOP else (a -> SKIP ||| a -> SKIP) ; P(n + 1) "
                         "Q = P(0)"),
              "a part of it has more than 4096 configurations");
}

} // namespace
} // namespace Calder::Pins
