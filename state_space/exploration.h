#pragma once

#include "process_compiler/named_process_source.h"
#include "state_space/exploration_options.h"
#include "state_space/export.h"

namespace Calder::StateSpace {

/// What was found, and whether it is all.
struct Exploration {
    /// Consistent in itself, however the search ended.
    LabelledTransitionSystem lts;
    /// Anything but `complete` means that there is more.
    Outcome outcome = Outcome::complete;
};

/// Explores what `start` can do, breadth-first: states are numbered in the order in which they are
/// first reached, each state's transitions in the order in which its term reports them. Equal terms
/// are one state.
///
/// When it ends early, the row of the state that it was at is dropped as a whole; states that only
/// this row had reached still count. So the system is consistent, and after the state limit it has
/// exactly `max_states` states.
///
/// There must be no recursion without a guard in `source`: asking for transitions would not end.
/// Instances are made as they are reached. Exceptions other than std::bad_alloc, such as those of
/// their maker, pass through.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT Exploration
explore(ProcessCompiler::ProcessPointer const& start,
        ProcessCompiler::NamedProcessSource const& source, ExplorationOptions const& options = {});

} // namespace Calder::StateSpace
