#pragma once

#include "script/script.h"
#include "tools/command_error.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Calder::Tools {

/// What every command takes: a script, and what is wanted of it.
struct Input {
    /// `-` for standard input.
    std::string file;
    /// Empty for the process defined last; a name, or anything that the notation has for a process.
    std::string process;
    /// NAME=VALUE: what the script is to define instead of what it does.
    std::vector<std::string> definitions;
    /// What is asked beside what the script asks, as it would stand behind `assert`.
    std::vector<std::string> assertions;

    /// The file in messages.
    std::string name() const { return file == "-" ? "standard input" : file; }
};

/// Without a limit of the user's, most of the memory that there is, in bytes: rather a search that
/// says how far it came than one that the system kills.
std::uint64_t default_memory_limit();

/// The errors of a script, of which there is one at least, each at its place.
class ScriptErrors : public std::exception {
  public:
    ScriptErrors(Script::Diagnostics diagnostics, Script::Sources sources)
        : m_diagnostics(std::move(diagnostics)), m_sources(std::move(sources)) {}

    Script::Diagnostics const& diagnostics() const { return m_diagnostics; }
    Script::Sources const& sources() const { return m_sources; }
    char const* what() const noexcept override { return m_diagnostics.front().message.c_str(); }

  private:
    Script::Diagnostics m_diagnostics;
    Script::Sources m_sources;
};

/// What a command does with a script.
using ScriptWork = std::function<int(Script::Script const& script)>;

/// … and with the process that the input names.
using ProcessWork =
    std::function<int(Script::Script const& script, Script::Script::Definition const& definition)>;

/// Reads the script and does the work. Throws ScriptErrors with those of the script, and CommandError
/// when it cannot be read or the command would occupy more than so many bytes once it is. What values
/// show only while the work is done is a ScriptError.
int run_with_script(Input const& input, ScriptWork const& work,
                    std::uint64_t max_memory = default_memory_limit());

/// The same with a process. Throws CommandError, too, when there is no such process.
int run_with_process(Input const& input, ProcessWork const& work,
                     std::uint64_t max_memory = default_memory_limit());

} // namespace Calder::Tools
