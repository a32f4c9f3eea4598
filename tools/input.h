#pragma once

#include "script/script.h"
#include "tools/command_error.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Calder::Tools {

/// What every command takes: a script, and one of its processes.
struct Input {
    /// `-` for standard input.
    std::string file;
    /// Empty for the process defined last; a name, or anything that the notation has for a process.
    std::string process;
    /// NAME=VALUE: what the script is to define instead of what it does.
    std::vector<std::string> definitions;

    /// The file in messages.
    std::string name() const { return file == "-" ? "standard input" : file; }
};

/// Without a limit of the user's, most of the memory that there is, in bytes: rather a search that
/// says how far it came than one that the system kills.
std::uint64_t default_memory_limit();

/// Reads the script; throws CommandError with its errors, each at its place, or when the process
/// would then occupy more than so many bytes.
std::unique_ptr<Script::Script> read_input(Input const& input,
                                           std::uint64_t max_memory = default_memory_limit());

/// The definition that the input names; throws CommandError when there is none.
Script::Script::Definition const& chosen_process(Script::Script const& script, Input const& input);

} // namespace Calder::Tools
