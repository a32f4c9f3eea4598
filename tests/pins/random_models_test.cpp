#include "process_compiler/event_numbers.h"
#include "state_space/deadlock.h"
#include "state_space/machine/machine_exploration.h"
#include "state_space/machine/machine_refusal.h"
#include "state_space/memory.h"
#include "tests/oracle/library_term.h"
#include "tests/oracle/shrinking.h"
#include "tests/pins/vector_exploration.h"

#include <gtest/gtest.h>

#include <set>

namespace Calder::Pins {
namespace {

using namespace Oracle;
using namespace ProcessCompiler;
using namespace StateSpace;
using namespace Testing;

constexpr StateNumber states_compared = 1'000;
constexpr int most_looks = 10;

/// Steps by the machine's own words: what the columns stand for.
using WordSteps = std::set<std::pair<unsigned, std::vector<Word>>>;

WordSteps steps_of_machine(Pins::Model const& model, std::vector<Word> const& words,
                           SearchMonitor& monitor) {
    Steps steps;
    std::vector<StateNumber> scratch;
    SuccessorTable const& table =
        model.tables->table(model.tables->configuration_of(words.data()), monitor);
    steps.clear(model.tables->width());
    table.append_successors(words.data(), steps, scratch);
    WordSteps found;
    for (std::size_t step = 0; step < steps.size(); ++step) {
        found.emplace(steps.event(step),
                      std::vector<Word>(steps.words(step), steps.words(step) + steps.width()));
    }
    return found;
}

/// What of the model is not as its machine does it; nothing where there is nothing to compare.
struct Comparison {
    std::optional<std::string> difference;
    bool was_made = false;
    bool changes = false;
    bool ends = false;
};

Comparison compare(Oracle::Model const& model) {
    NamedProcessSource source;
    ProcessPointer const start = library_model(model, source);
    if (!make_term_graph(start, source).refused.empty()) {
        return {};
    }
    int looks = 0;
    RunOptions options;
    options.max_states = states_compared;
    options.max_memory = resident_bytes() + (std::uint64_t{50} << 20);
    options.progress = [&](Progress const&) { return ++looks < most_looks; };
    MachineExploration const run = explore_by_machine(start, source, options);
    if (!run.run.refusal.empty() || run.run.outcome != Outcome::complete) {
        return {};
    }
    ExplorationOptions const unbounded;
    SearchMonitor monitor(unbounded, SearchMonitor::longest_for_machines);
    Pins::Model made;
    try {
        made = make_model(start, source, unbounded);
    } catch (MachineRefusal const&) {
        return {}; // a part by itself has configurations without end
    }
    auto const reached = explore_vectors(*made.vectors, states_compared * 2);
    Comparison result;
    result.was_made = true;
    result.ends = made.vectors->ended_column().has_value();
    for (auto const& column : made.vectors->columns()) {
        result.changes = result.changes || column.kind == VectorMachine::ColumnKind::configuration;
    }
    if (!reached) {
        result.difference = "there are too many states";
        return result;
    }
    if (!reached->wrong.empty()) {
        result.difference = reached->wrong;
        return result;
    }
    std::set<std::vector<Word>> states;
    for (std::size_t number = 0; number < reached->states.size(); ++number) {
        auto const words = made.vectors->words_of(reached->states[number], monitor);
        if (!words) {
            result.difference = "a state stands for nothing";
            return result;
        }
        states.insert(*words);
        WordSteps found;
        for (Step const& step : reached->steps[number]) {
            auto const target = made.vectors->words_of(step.successor, monitor);
            if (!target) {
                result.difference = "a successor stands for nothing";
                return result;
            }
            unsigned const event = made.vectors->events()[static_cast<std::size_t>(step.label)];
            found.emplace(event, *target);
            if (made.vectors->ended_column() &&
                (step.successor[*made.vectors->ended_column()] == 1) != (event == tick)) {
                result.difference = "the end is not where a tick is";
                return result;
            }
        }
        // Of one leaf there may be no tables of the machine that was compared with before.
        if (found != steps_of_machine(made, *words, monitor)) {
            result.difference = "the steps of state " + std::to_string(number);
            return result;
        }
    }
    if (states.size() != run.run.state_count) {
        result.difference =
            std::to_string(states.size()) + " states for " + std::to_string(run.run.state_count);
    }
    if (reached->states.size() == states.size() &&
        reached->transitions != run.run.transition_count) {
        result.difference = std::to_string(reached->transitions) + " transitions for " +
                            std::to_string(run.run.transition_count);
    }
    if (reached->has_deadlock != find_deadlock(run.run.lts).has_value()) {
        result.difference = "a deadlock";
    }
    return result;
}

Oracle::Model model_of_seed(std::uint64_t seed) {
    return random_model(seed, 2 + static_cast<unsigned>(seed % 14), seed % 3 == 0);
}

TEST(VectorsOfRandomModels, do_step_by_step_what_the_machine_does) {
    expect_no_difference(
        8'000, model_of_seed, [](Oracle::Model const& model) { return compare(model).difference; },
        4);
}

/// So that the comparison does not pass for lack of anything to compare.
TEST(VectorsOfRandomModels, have_configurations_and_ends) {
    unsigned compared = 0;
    unsigned changing = 0;
    unsigned ending = 0;
    for (std::uint64_t seed = 1; seed <= 500; ++seed) {
        Comparison const comparison = compare(model_of_seed(seed));
        compared += comparison.was_made ? 1 : 0;
        changing += comparison.changes ? 1 : 0;
        ending += comparison.ends ? 1 : 0;
    }
    EXPECT_GT(compared, 250U);
    EXPECT_GT(changing, 25U);
    EXPECT_GT(ending, 25U);
}

} // namespace
} // namespace Calder::Pins
