#pragma once

#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"

#include <optional>

namespace Calder::StateSpace {

/// A state in which nothing can happen although the process has not terminated.
struct Deadlock {
    /// The one in which nothing can happen.
    StateNumber state = 0;
    /// The events that lead from the start to it, tau included: as few as possible for any
    /// deadlock, and the last one is not tick.
    std::vector<unsigned> trace{};
    /// The states on the way: where each event of the trace begins.
    std::vector<StateNumber> sources{};
};

/// The deadlock with the shortest trace; of several the one found first in the order of the rows.
///
/// A deadlock is an explored state without transitions that is the start, or that some transition
/// other than a tick leads to: what only a tick leads to has terminated. The system must be
/// numbered breadth-first, as an exploration does it. One pass over the rows, up to the deadlock; 8
/// bytes a state.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::optional<Deadlock>
find_deadlock(LabelledTransitionSystem const& lts);

} // namespace Calder::StateSpace
