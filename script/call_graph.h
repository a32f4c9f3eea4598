#pragma once

#include "script/translation.h"

#include <vector>

namespace Calder::Script {

/// Which definition calls which, where that leads in circles, and what follows from it.
struct CallGraph {
    /// By definition: a process on a recursive cycle, so its calls stand as references.
    std::vector<bool> is_reference;
    /// By definition: nothing that it can become prefers to be a construct of a machine.
    std::vector<bool> is_sequential;
    /// By definition: every reference in it stands behind an event, so it runs none from its start. What
    /// is not said to be so may be so, too.
    std::vector<bool> is_guarded;
    /// All definitions, each behind those that it calls, but for those on its own cycle.
    std::vector<unsigned> order;
};

/// Also sets the modes of the program's definitions. Linear, and without recursion.
CallGraph connect_calls(NameTable const& names, Translation& translation);

} // namespace Calder::Script
