#pragma once

#include "state_space/exploration.h"
#include "state_space/export.h"

#include <memory>
#include <string>

namespace Calder::StateSpace {

class ReachedStates;

/// The limits of a run, and what it keeps.
struct RunOptions : ExplorationOptions {
    /// Whether the transitions are wanted, and not only their number: 8 bytes each and 8 bytes a
    /// state.
    bool keep_transitions = true;
    /// How many threads explore, at least 1; where there is little to explore, one of them does. The
    /// result does not depend on it, but for where a limit on memory or whoever watches ends a run,
    /// and, where transitions are not kept, for which state has which number.
    unsigned threads = 1;
};

/// What a run found, and whether it is all.
struct Run {
    /// Those that were only reached are counted, too.
    StateNumber state_count = 0;
    /// Of the explored states.
    std::uint64_t transition_count = 0;
    /// Anything but `complete` means that there is more.
    Outcome outcome = Outcome::complete;
    /// Empty when the transitions were not wanted.
    LabelledTransitionSystem lts{};
    /// Why the machine cannot be run, a part of a sentence; empty when it can.
    std::string refusal{};
    /// What the numbers of the states stand for; null where states were only counted, as CountingSearch does.
    std::shared_ptr<ReachedStates const> states{};
    /// What the states occupied in the end, the tables in which they are found included.
    std::uint64_t state_bytes = 0;
};

/// What an exploration term by term found, in the same form.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT Run run_of(Exploration exploration);

} // namespace Calder::StateSpace
