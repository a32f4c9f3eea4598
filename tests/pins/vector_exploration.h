#pragma once

#include "pins/model.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Calder::Pins::Testing {

using State = std::vector<int>;

/// What an engine of vectors would be told of one step.
struct Step {
    auto operator<=>(Step const&) const = default;

    int label;
    State successor;
};

struct TakenSteps {
    std::vector<Step> steps;
    std::vector<int> groups;
    std::size_t successor_size;
};

inline VectorMachine::StepTaker take_into(TakenSteps& taken) {
    return {[](void* context, int label, int group, int* successor) {
                auto& all = *static_cast<TakenSteps*>(context);
                all.steps.push_back({label, State(successor, successor + all.successor_size)});
                all.groups.push_back(group);
            },
            &taken};
}

inline State projected(State const& state, std::vector<std::uint32_t> const& columns) {
    State part;
    for (std::uint32_t const column : columns) {
        part.push_back(state[column]);
    }
    return part;
}

inline State replaced(State state, std::vector<std::uint32_t> const& columns, State const& part) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        state[columns[i]] = part[i];
    }
    return state;
}

/// All steps of a state, in their order, and what is wrong with what was told of them: a count, a step
/// told twice, one form of a group that disagrees with another.
inline std::vector<Step> steps_of(VectorMachine const& machine, State const& state,
                                  std::string& wrong) {
    VectorMachine::Scratch scratch;
    TakenSteps all{{}, {}, state.size()};
    int const count = machine.for_all_steps(state.data(), scratch, take_into(all));
    if (count != static_cast<int>(all.steps.size())) {
        wrong = "the count of all steps";
    }
    std::vector<Step> by_groups;
    for (std::size_t group = 0; group < machine.groups().size(); ++group) {
        auto const& [touched, reads, writes] = machine.groups()[group];
        TakenSteps whole{{}, {}, state.size()};
        TakenSteps short_steps{{}, {}, touched.size()};
        TakenSteps written{{}, {}, writes.size()};
        int const wholes = machine.for_steps_of(group, state.data(), scratch, take_into(whole));
        int const shorts = machine.for_short_steps_of(group, projected(state, touched).data(),
                                                      scratch, take_into(short_steps));
        int const parts = machine.for_read_to_written_steps_of(
            group, projected(state, reads).data(), scratch, take_into(written));
        for (Step& step : short_steps.steps) {
            step.successor = replaced(state, touched, step.successor);
        }
        for (Step& step : written.steps) {
            step.successor = replaced(state, writes, step.successor);
        }
        if (whole.steps != short_steps.steps || whole.steps != written.steps) {
            wrong = "the forms of group " + std::to_string(group);
        }
        if (wholes != shorts || wholes != parts || wholes != static_cast<int>(whole.steps.size())) {
            wrong = "the counts of group " + std::to_string(group);
        }
        for (std::size_t i = 0; i < all.steps.size(); ++i) {
            if (all.groups[i] == static_cast<int>(group) &&
                std::find(whole.steps.begin(), whole.steps.end(), all.steps[i]) ==
                    whole.steps.end()) {
                wrong = "a step of all that group " + std::to_string(group) + " does not have";
            }
        }
        by_groups.insert(by_groups.end(), whole.steps.begin(), whole.steps.end());
    }
    std::vector<Step> sorted = all.steps;
    std::sort(sorted.begin(), sorted.end());
    std::sort(by_groups.begin(), by_groups.end());
    if (sorted != by_groups) {
        wrong = "all steps are not those of the groups";
    }
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) {
        wrong = "a step is told twice";
    }
    return all.steps;
}

/// All that can be reached, breadth-first.
struct Reached {
    std::vector<State> states;
    std::vector<std::vector<Step>> steps; // by state
    std::uint64_t transitions = 0;
    bool has_deadlock = false;
    std::string wrong{}; // what is, if anything
};

inline std::optional<Reached> explore_vectors(VectorMachine const& machine,
                                              std::size_t most_states) {
    Reached reached;
    reached.states.push_back(machine.start());
    std::map<State, std::size_t> numbers{{machine.start(), 0}};
    for (std::size_t number = 0; number < reached.states.size(); ++number) {
        State const state = reached.states[number];
        reached.steps.push_back(steps_of(machine, state, reached.wrong));
        for (Step const& step : reached.steps.back()) {
            if (numbers.try_emplace(step.successor, reached.states.size()).second) {
                reached.states.push_back(step.successor);
            }
        }
        if (reached.states.size() > most_states) {
            return std::nullopt;
        }
        reached.transitions += reached.steps.back().size();
        bool const has_ended = machine.ended_column() && state[*machine.ended_column()] == 1;
        reached.has_deadlock = reached.has_deadlock || (reached.steps.back().empty() && !has_ended);
    }
    return reached;
}

} // namespace Calder::Pins::Testing
