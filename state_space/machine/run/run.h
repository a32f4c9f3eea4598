#pragma once

#include "state_space/exploration.h"
#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/visited_states.h"

namespace Calder::StateSpace {

struct RunOptions : ExplorationOptions {
    /// Whether the transitions are wanted, and not only their number: 8 bytes each and 8 bytes a
    /// state.
    bool keep_transitions = true;
    /// How many threads work, at least 1. One of them numbers the states; the others find
    /// successors for it. The result does not depend on it.
    unsigned threads = 1;
};

struct Run {
    StateNumber state_count = 0;
    std::uint64_t transition_count = 0;
    Outcome outcome = Outcome::complete;
    /// Empty when the transitions were not wanted.
    LabelledTransitionSystem lts{};
    /// Why the machine cannot be run, a part of a sentence; empty when it can.
    std::string refusal{};
    /// What the numbers of the states stand for.
    std::unique_ptr<VisitedStates const> states{};
};

/// What an exploration term by term found, in the same form.
[[nodiscard]] Run run_of(Exploration exploration);

/// Explores what the machine can do, breadth-first: states are numbered in the order in which they
/// are first reached, the transitions of a state ascending by event. An early end leaves what
/// `explore` would leave.
[[nodiscard]] Run run(ConfigurationTables& tables, RunOptions const& options);

} // namespace Calder::StateSpace
