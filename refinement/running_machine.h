#pragma once

#include "state_space/machine/compile/compile.h"

#include <memory>

namespace Calder::StateSpace {
class ConfigurationTables;
}

namespace Calder::Refinement {

/// A machine and the tables by which it runs.
struct RunningMachine {
    /// Null where terms run.
    std::unique_ptr<StateSpace::Machine const> machine;
    /// For what the evidence is asked about; null where terms run.
    std::shared_ptr<StateSpace::ConfigurationTables> tables;
};

/// Why a side has no machine although one was wanted; empty where it has one, or is one leaf.
struct NoMachine {
    /// A part of a sentence.
    std::string reason{};
    /// The recursion that no machine can follow, if that was the reason.
    std::vector<StateSpace::RefusedRecursion> refused{};
};

} // namespace Calder::Refinement
