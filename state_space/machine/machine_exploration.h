#pragma once

#include "state_space/machine/run.h"

#include <optional>

namespace Calder::StateSpace {

/// An exploration by the machine that a term compiles to.
struct MachineExploration {
    Run run;
    /// Null when there is no machine to ask: the term was refused, or it is one component and was
    /// explored as it stands.
    std::unique_ptr<Machine const> machine;
    std::unique_ptr<MachineStates> states;
};

/// Compiles the term and runs the machine. Where that is refused, `run.refusal` says why, and
/// nothing was explored.
MachineExploration explore_by_machine(ProcessCompiler::ProcessPointer const& start,
                                      ProcessCompiler::NamedProcessSource const& source,
                                      RunOptions const& options);

/// Which components take part in the step of a machine from a state to another with this event, as
/// slots of the first one's configuration; those of the first rule that leads so. None when no rule
/// does.
std::optional<std::vector<std::uint32_t>> slots_taking_part(MachineExploration const& exploration,
                                                            StateNumber source, unsigned event,
                                                            StateNumber target);

} // namespace Calder::StateSpace
