#pragma once

#include "tools/input.h"

namespace Calder::Tools {

struct MachineOptions {
    Input input;
    bool json = false;
};

/// `calder machine`: the machine that the process compiles to, for people or as JSON.
int print_machine(MachineOptions const& options);

} // namespace Calder::Tools
