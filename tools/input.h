#pragma once

#include "script/script.h"

#include <memory>
#include <string>

namespace Calder::Tools {

/// What every command takes: a script, and one of its processes.
struct Input {
    std::string file;
    /// Empty for the process defined last.
    std::string process;
};

/// Reads the script; throws CommandError with all of its errors, each at its place.
std::unique_ptr<Script::Script> read_input(Input const& input);

/// The definition that the input names; throws CommandError when there is none.
Script::Script::Definition const& chosen_process(Script::Script const& script, Input const& input);

} // namespace Calder::Tools
