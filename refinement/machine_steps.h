#pragma once

#include "refinement/evidence.h"
#include "refinement/export.h"
#include "refinement/running_machine.h"
#include "state_space/machine/run/layout.h"

namespace Calder::Refinement {

/// @{
/// What people want to know of the states and steps of a machine, by their words: as many as its tables
/// are wide now. The configurations of the states were met.
[[nodiscard]] CALDER_REFINEMENT_EXPORT RunState described_state(RunningMachine const& machine,
                                                                StateNumber number,
                                                                StateSpace::Word const* state);
[[nodiscard]] CALDER_REFINEMENT_EXPORT EvidenceStep described_step(
    RunningMachine const& machine, StateNumber source, StateSpace::Word const* source_words,
    unsigned event, StateNumber target, StateSpace::Word const* target_words);
/// @}

} // namespace Calder::Refinement
