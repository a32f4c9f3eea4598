#include "tools/by_terms_note.h"

#include "tools/machine_text.h"

#include <fmt/core.h>

namespace Calder::Tools {

namespace {

std::string note(std::string const& process, std::string const& reason,
                 std::string const& details) {
    return fmt::format("calder: {} is explored term by term: {}\n{}", process, reason, details);
}

} // namespace

std::string by_terms_note(std::string const& process, std::string const& reason,
                          std::vector<StateSpace::RefusedRecursion> const& refused,
                          Script::Script const& script) {
    return note(process, reason, recursion_notes(refused, script));
}

std::string by_terms_note(std::string const& process, Script::ScriptError const& error) {
    return note(process, "one of its components by itself comes to an error", error.what());
}

} // namespace Calder::Tools
