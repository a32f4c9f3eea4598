#pragma once

#include "refinement/evidence.h"
#include "refinement/export.h"
#include "refinement/running_machine.h"

namespace Calder::Refinement {

/// What the leaf in one slot would do if others did their part.
struct Wanted {
    /// Member by member.
    bool operator==(Wanted const&) const = default;

    /// What the whole would perform; no_event where no rule lets the leaf's event through.
    unsigned event;
    /// What the leaf itself performs.
    unsigned part_event;
    /// Slots that would have to take part and cannot, ascending, and no fewer would do. Of several such
    /// sets each makes a Wanted of its own. Empty where no rule lets it, and where nothing is missing.
    std::vector<std::uint32_t> missing;
};

/// What one slot waits for: by event of the leaf, then by event of the whole. Nothing where the leaf
/// has ended or stopped.
struct Waiting {
    /// Its leaf, and the state that this is in.
    SlotState slot_state;
    /// Counted from left to right.
    std::uint32_t slot;
    /// None where the leaf can do nothing by itself.
    std::vector<Wanted> wanted;
};

/// Slot by slot. Empty where there is no machine, and where its constructs nest too deeply to be gone
/// through. `state` is one that the machine came by.
///
/// The rules of the constructs are gone through once, from below. Of one event of a construct and of
/// one wish at most `most_ways` sets are kept, the smallest.
[[nodiscard]] CALDER_REFINEMENT_EXPORT std::vector<Waiting>
waiting_in(RunningMachine const& machine, RunState const& state);

/// More would rarely be read, and there may be exponentially many.
constexpr std::size_t most_ways = 64;

/// Slots each of which waits for the next one, the last for the first; empty where the waiting does
/// not go round. A shortest such list, and of these the least.
[[nodiscard]] CALDER_REFINEMENT_EXPORT std::vector<std::uint32_t>
waiting_cycle(std::vector<Waiting> const& waiting);

} // namespace Calder::Refinement
