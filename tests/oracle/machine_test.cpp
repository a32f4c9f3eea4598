#include "state_space/bisimulation.h"
#include "state_space/machine/machine_exploration.h"
#include "state_space/memory.h"
#include "tests/oracle/deliberate_differences.h"
#include "tests/oracle/library_term.h"
#include "tests/oracle/shrinking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>

namespace Calder::Oracle {
namespace {

using namespace ProcessCompiler;
using namespace StateSpace;

/// Beyond this, a model is let be: recursion may grow without end.
constexpr StateNumber states_compared = 150;
constexpr std::uint64_t memory_for_one_model = std::uint64_t{50} << 20;
/// How often an exploration asks whether to go on before it is given up: a state may have millions
/// of transitions that are all the same.
constexpr int most_looks = 10;

/// Both explorations of a model that is small enough to be compared.
struct Explored {
    Exploration terms;
    Run machine;
};

bool explore_both(Model const& model, Explored& explored) {
    NamedProcessSource source;
    ProcessPointer const start = library_model(model, source);
    if (!make_term_graph(start, source).refused.empty()) {
        return false; // terms may double at each step, and one alone take all memory
    }
    RunOptions options;
    int looks = 0;
    options.max_states = states_compared;
    options.max_memory = resident_bytes() + memory_for_one_model;
    options.progress = [&](Progress const&) { return ++looks < most_looks; };
    explored.terms = explore(start, source, options);
    if (explored.terms.outcome != Outcome::complete) {
        return false;
    }
    // Each STOP of the terms may be several states of the machine.
    looks = 0;
    options.max_states = states_compared * 20;
    MachineExploration machine = explore_by_machine(start, source, options);
    explored.machine = std::move(machine.run);
    // Without a machine it is one component, or has one without end. Time and memory depend on the
    // day; that a machine has too many states does not.
    return machine.machine != nullptr && (explored.machine.outcome == Outcome::complete ||
                                          explored.machine.outcome == Outcome::state_limit);
}

template <typename Check> bool all_arguments(Term const& term, Check const& check) {
    return std::all_of(term.arguments.begin(), term.arguments.end(),
                       [&](TermPointer const& argument) { return check(*argument); });
}

/// A term that is explored as it stands, and that never terminates.
bool is_sequential(Term const& term) {
    return entry_of(term.kind).role == Role::sequential && term.events.count(tick) == 0 &&
           all_arguments(term, is_sequential);
}

/// Networks that keep their shape, over sequential arguments: here the states of both are the same,
/// one by one. Elsewhere a machine may have several states for the one STOP of the terms.
bool is_static_network(Term const& term) {
    return entry_of(term.kind).role == Role::static_network && !term.arguments.empty() &&
           all_arguments(term, [](Term const& argument) {
               return is_sequential(argument) || is_static_network(argument);
           });
}

std::optional<std::string> difference_between(Explored const& explored, bool counts_agree) {
    LabelledTransitionSystem const& terms = explored.terms.lts;
    Run const& machine = explored.machine;
    if (machine.outcome != Outcome::complete) {
        return "the machine does not end: " + std::string(describe(machine.outcome));
    }
    if (!are_bisimilar(terms, machine.lts)) {
        return "the machine behaves differently";
    }
    if (counts_agree && (machine.state_count != terms.state_count() ||
                         machine.transition_count != terms.transition_count())) {
        return "the machine has other states or transitions: " +
               std::to_string(machine.state_count) + ", " +
               std::to_string(machine.transition_count) + " for " +
               std::to_string(terms.state_count()) + ", " +
               std::to_string(terms.transition_count());
    }
    return std::nullopt;
}

std::optional<std::string> difference_in(Model const& model) {
    Explored explored;
    if (has_deliberate_difference(model) || !explore_both(model, explored)) {
        return std::nullopt;
    }
    return difference_between(explored, is_static_network(*model.term));
}

Model model_of_seed(std::uint64_t seed) {
    bool const tick_in_sets = seed % 3 == 0;
    return random_model(seed, 2 + static_cast<unsigned>(seed % 12), tick_in_sets);
}

TEST(Machine, behaves_as_the_term_it_was_compiled_from) {
    expect_no_difference(5'000, model_of_seed, difference_in);
}

/// So that the comparison does not pass for lack of anything to compare.
TEST(Machine, most_random_models_are_compared_and_many_state_by_state) {
    constexpr std::uint64_t models = 1'000;
    std::uint64_t compared = 0;
    std::uint64_t state_by_state = 0;
    for (std::uint64_t seed = 1; seed <= models; ++seed) {
        Model const model = model_of_seed(seed);
        Explored explored;
        if (!has_deliberate_difference(model) && explore_both(model, explored)) {
            ++compared;
            state_by_state += is_static_network(*model.term);
        }
    }
    EXPECT_GT(compared, models / 2);
    EXPECT_GT(state_by_state, models / 100);
}

/// Users read of the differences in the documentation.
TEST(Machine, every_deliberate_difference_is_documented) {
    std::stringstream text;
    text << std::ifstream(CALDER_DOCS "/machines.md").rdbuf();
    for (DeliberateDifference const& row : deliberate_differences()) {
        std::string const line = std::string("| ") + row.construct + " | " + row.where + " | " +
                                 row.by_transitions + " | " + row.by_formats + " |\n";
        EXPECT_NE(text.str().find(line), std::string::npos) << line;
    }
}

TEST(Machine, differs_where_it_is_meant_to) {
    for (DeliberateDifference const& row : deliberate_differences()) {
        Explored explored;
        ASSERT_TRUE(row.is_at(*row.example) || row.is_at(*row.example->arguments.front()))
            << row.construct << ": " << row.where;
        ASSERT_TRUE(explore_both(Model{row.example, {}}, explored));
        EXPECT_EQ(difference_between(explored, false), "the machine behaves differently")
            << row.construct << ": " << row.where;
    }
}

} // namespace
} // namespace Calder::Oracle
