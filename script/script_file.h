#pragma once

#include "script/script.h"

#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Calder::Script {

/// A script in a file, and what is wanted of it, in the words of those who ask.
struct ScriptFile {
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

/// What is wrong with what was asked for, and not with the text of a script: a file that cannot be
/// read, a process that is not there.
class ScriptFileError : public std::exception {
  public:
    explicit ScriptFileError(Wording wording) : m_wording(std::move(wording)) {}

    Wording const& wording() const { return m_wording; }
    char const* what() const noexcept override { return m_wording.text.c_str(); }

  private:
    Wording m_wording;
};

/// The errors of a script, of which there is one at least, each at its place.
class ScriptErrors : public std::exception {
  public:
    ScriptErrors(Diagnostics diagnostics, Sources sources)
        : m_diagnostics(std::move(diagnostics)), m_sources(std::move(sources)) {}

    Diagnostics const& diagnostics() const { return m_diagnostics; }
    Sources const& sources() const { return m_sources; }
    char const* what() const noexcept override { return m_diagnostics.front().message.c_str(); }

  private:
    Diagnostics m_diagnostics;
    Sources m_sources;
};

/// Reads the script, and what it includes from beside it. Throws ScriptErrors with those of the text,
/// ScriptFileError when there is no text or a definition is none, and std::bad_alloc.
std::unique_ptr<Script> read_script_file(ScriptFile const& wanted);

/// The definition that is wanted of what was read. Throws ScriptFileError when there is no such process.
Script::Definition const& chosen_process(Script const& script, ScriptFile const& wanted);

} // namespace Calder::Script
