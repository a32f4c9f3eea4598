#pragma once

#include "process_compiler/named_process_source.h"
#include "process_compiler/session.h"
#include "script/assertion.h"
#include "script/diagnostics.h"
#include "script/export.h"
#include "script/limits.h"
#include "script/sources.h"

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Calder::Script {

/// What only values show, and only when a process is asked for what it does: the script was read
/// before. Comes out of NamedProcessSource::process, and so out of exploring.
class CALDER_SCRIPT_EXPORT ScriptError : public std::exception {
  public:
    /// Renders the text at once, as the sources may go.
    ScriptError(Diagnostic diagnostic, Sources const& sources)
        : m_diagnostic(std::move(diagnostic)), m_text(render(m_diagnostic, sources)) {
        for (Source const& source : sources) {
            m_files.push_back(source.name);
        }
    }

    /// With its place, for who shows it in a way of its own.
    Diagnostic const& diagnostic() const { return m_diagnostic; }
    /// The names of the sources, by number.
    std::vector<std::string> const& files() const { return m_files; }
    /// As it is told: with its place and the line. Whoever catches it may not have the script.
    char const* what() const noexcept override { return m_text.c_str(); }

  private:
    Diagnostic m_diagnostic;
    std::string m_text;
    std::vector<std::string> m_files;
};

/// What a script says: the names of its events, and terms by name. Owns all of it; terms and
/// references must not outlive it.
class CALDER_SCRIPT_EXPORT Script {
  public:
    /// A process without parameters.
    struct Definition {
        /// As it is written.
        std::string name;
        /// Of the name.
        Location location;
        /// What stands for the name where an exploration starts: its reference when it is on a
        /// recursive cycle, otherwise the very same term as `body`.
        ProcessCompiler::ProcessPointer term;
        /// What the definition says.
        ProcessCompiler::ProcessPointer body;
    };

    ~Script();
    Script(Script const&) = delete;
    Script& operator=(Script const&) = delete;

    /// Events are numbered in the order of their declaration.
    ProcessCompiler::Session const& session() const { return m_session; }
    /// Makes what stands on recursive cycles: names, and the instances of definitions with
    /// parameters, each when it is first asked for. All others are replaced by what they stand for,
    /// which is shared and not copied. Throws ScriptError as it makes one.
    ProcessCompiler::NamedProcessSource const& processes() const { return m_processes; }

    /// In the order of the script.
    std::vector<Definition> const& definitions() const { return m_definitions; }
    /// The name of the first process with parameters; empty when there is none.
    std::string_view process_with_parameters() const;
    /// Null when the script does not define the name.
    Definition const* find(std::string_view name) const;
    /// Why a name that `find` does not find is no process to be asked for, a part of a sentence; empty
    /// when the script does not define it at all.
    std::string reason_against(std::string_view name) const;
    /// The process of ReadOptions; null when none was given.
    Definition const* asked() const { return m_asked.get(); }

    /// What it asks: its `assert` lines and those of the files that it includes in the order in which
    /// they stand, then the ones of ReadOptions.
    std::vector<AssertionHead> const& assertions() const { return m_assertions; }
    /// Without making their terms.
    std::size_t assertion_count() const { return m_assertions.size(); }
    /// Makes its terms, which the script keeps: the same ones every time. Throws ScriptError.
    Assertion assertion(std::size_t number) const;

    /// The names of terms, each by the very object.
    using NamesOfTerms = std::unordered_map<ProcessCompiler::Process const*, std::string>;
    /// Says of each of these very terms that has no name yet whether it stands for a call of a process
    /// that has parameters and no recursion: `R(0)`. One pass over those calls.
    void name_calls(NamesOfTerms& names) const;
    /// Where the name of a process or an instance is defined.
    Location location_of(ProcessCompiler::NamedProcess const& reference) const;

    /// All that was read, for showing a place in it.
    Sources const& sources() const { return m_sources; }

  private:
    friend class Reader;
    class Model;

    Script();

    Sources m_sources;
    ProcessCompiler::Session m_session;
    ProcessCompiler::NamedProcessSource m_processes;
    std::unique_ptr<Model> m_model;
    std::vector<Definition> m_definitions;
    std::unique_ptr<Definition> m_asked;
    std::vector<AssertionHead> m_assertions;
    std::unordered_map<std::string_view, std::size_t> m_places; // of the definitions
};

/// What is read beside the script itself.
struct ReadOptions {
    /// Names and what they are to be defined as, in the place of what the script says.
    std::vector<std::pair<std::string, std::string>> definitions{};
    /// A process that is asked for as it would be written in the script: `BUFFER(<0>)`.
    std::string process{};
    /// What is asked beside the script, as it would be written behind `assert`.
    std::vector<std::string> assertions{};
    /// How `include` reads files; without it there are none.
    Include include{};
};

/// A script, or what is wrong with it.
struct ReadResult {
    /// Null when there are diagnostics.
    std::unique_ptr<Script> script;
    /// Every error of the script that is not the mere consequence of another, in order of place.
    /// What only values show is told when there is nothing else.
    Diagnostics diagnostics;
    /// What the diagnostics are about.
    Sources sources;
};

/// Reads a script of the notation, in UTF-8. Without values, time and memory are linear in its
/// length, its events and its sets; the stack that is used is not longer for a longer script.
/// Throws std::bad_alloc.
CALDER_SCRIPT_EXPORT ReadResult read_script(Source script, ReadOptions const& options);
/// The same of a text alone, which messages call "script".
CALDER_SCRIPT_EXPORT ReadResult read_script(std::string_view text);

} // namespace Calder::Script
