#pragma once

#include "tools/leaf_names.h"
#include "tools/messages.h"

#include <string>

namespace Calder::Tools {

/// A machine and what it takes to tell people about it.
struct ShownMachine {
    std::string process;
    StateSpace::Machine const& machine;
    Script::Script const& script;
    LeafNames const& names;
};

/// For people: the leaves, then each construct with its formats and rules.
std::string machine_text(ShownMachine const& shown);

/// Why recursion was refused: a remark for each name on the cycles, with its place in the script; of
/// many, how many more there are.
std::vector<Remark> recursion_notes(std::vector<StateSpace::RefusedRecursion> const& refused,
                                    Script::Script const& script);

} // namespace Calder::Tools
