#pragma once

#include "state_space/machine/compile/compile.h"

#include <memory>

namespace Calder::StateSpace {
class ConfigurationTables;
}

namespace Calder::Refinement {

/// A machine and the tables by which it runs.
struct RunningMachine {
    std::unique_ptr<StateSpace::Machine const> machine;
    std::shared_ptr<StateSpace::ConfigurationTables> tables;
};

/// Why a side has no machine although one was wanted; empty where it has one, or is one leaf.
struct NoMachine {
    std::string reason{};
    std::vector<StateSpace::RefusedRecursion> refused{};
};

} // namespace Calder::Refinement
