#pragma once

#include "process_compiler/named_process_source.h"
#include "process_compiler/session.h"
#include "script/diagnostics.h"
#include "script/limits.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Calder::Script {

/// What a script says: the names of its events, and terms by name. Owns all of it; terms and
/// references must not outlive it.
class Script {
  public:
    struct Definition {
        std::string name;
        Location location; // of the name
        /// What stands for the name where an exploration starts: its reference when it is on a
        /// recursive cycle, otherwise the very same term as `body`.
        ProcessCompiler::ProcessPointer term;
        /// What the definition says.
        ProcessCompiler::ProcessPointer body;
    };

    ~Script();
    Script(Script const&) = delete;
    Script& operator=(Script const&) = delete;

    ProcessCompiler::Session const& session() const { return m_session; }
    /// Defines the names on recursive cycles. All others are replaced by what they name, which is
    /// shared and not copied.
    ProcessCompiler::NamedProcessSource const& processes() const { return m_processes; }

    /// In the order of the script.
    std::vector<Definition> const& definitions() const { return m_definitions; }
    /// Null when the script does not define the name.
    Definition const* find(std::string_view name) const;

  private:
    friend class Reader;

    Script();

    ProcessCompiler::Session m_session;
    ProcessCompiler::NamedProcessSource m_processes;
    std::vector<Definition> m_definitions;
    std::unordered_map<std::string_view, std::size_t> m_places; // of the definitions
};

struct ReadResult {
    /// Null when there are diagnostics.
    std::unique_ptr<Script> script;
    /// Every error of the script that is not the mere consequence of another, in order of place.
    Diagnostics diagnostics;
};

/// Reads a script of the notation, in UTF-8. Time and memory are linear in its length, its events
/// and its sets; the stack that is used is not longer for a longer script. Throws std::bad_alloc.
ReadResult read_script(std::string_view text);

} // namespace Calder::Script
