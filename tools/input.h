#pragma once

#include "script/script_file.h"
#include "state_space/available_memory.h"

#include <cstdint>
#include <functional>

namespace Calder::Tools {

/// What every command takes: a script, and what is wanted of it.
using Input = Script::ScriptFile;

/// What a command does with a script.
using ScriptWork = std::function<int(Script::Script const& script)>;

/// … and with the process that the input names.
using ProcessWork =
    std::function<int(Script::Script const& script, Script::Script::Definition const& definition)>;

/// Reads the script and does the work. Throws ScriptErrors with those of the script, ScriptFileError
/// when it cannot be read, and CommandError when the command would occupy more than so many bytes once
/// it is. What values show only while the work is done is a ScriptError.
int run_with_script(Input const& input, ScriptWork const& work,
                    std::uint64_t max_memory = StateSpace::default_memory_limit());

/// The same with a process. Throws ScriptFileError, too, when there is no such process.
int run_with_process(Input const& input, ProcessWork const& work,
                     std::uint64_t max_memory = StateSpace::default_memory_limit());

} // namespace Calder::Tools
