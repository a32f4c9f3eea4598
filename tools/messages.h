#pragma once

#include "script/script.h"
#include "script/wording.h"

#include <optional>
#include <string>
#include <vector>

namespace Calder::Tools {

enum class Severity { error, warning, note };

/// A part of a source, by the name that messages have for it.
struct Place {
    std::string file;
    Script::Location location;
};

/// What stands below a message.
struct Remark {
    std::string text;
    std::optional<Place> place{};
    /// The lines of it that people see, with their line ends.
    std::string shown;
};

/// What the command says of its work, not of the text of a script.
struct Message {
    Severity severity;
    /// For people "calder: " stands in front of it.
    Script::Wording wording;
    std::vector<Remark> remarks{};

    /// As people see it, with its line ends.
    std::string shown() const;
};

Remark remark(std::string const& text);
/// "m.csp:3:1: note: …"
Remark remark_at(Place place, std::string const& text);
/// With its line and the calls that led there, which are remarks of their own for programs.
std::vector<Remark> remarks_of(Script::ScriptError const& error);

/// Writes to standard error, in the format that is chosen: as text, or each message and each diagnostic
/// as a JSON object on a line of its own. Of very many diagnostics people see the first ones, and
/// programs all.
void tell_message(Message const& message);
void tell_error(Script::Wording const& wording);
void tell_script_error(Script::ScriptError const& error);
void tell_script_errors(Script::Diagnostics const& diagnostics, Script::Sources const& sources);

} // namespace Calder::Tools
