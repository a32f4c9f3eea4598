#include "tools/by_terms_note.h"

#include "tools/machine_text.h"

#include <fmt/core.h>

namespace Calder::Tools {

namespace {

std::string note(std::string const& processes_are, std::string const& reason,
                 std::string const& details) {
    return fmt::format("calder: {} explored term by term: {}\n{}", processes_are, reason, details);
}

} // namespace

std::string by_terms_note(std::string const& processes_are, std::string const& reason,
                          std::vector<StateSpace::RefusedRecursion> const& refused,
                          Script::Script const& script) {
    return note(processes_are, reason, recursion_notes(refused, script));
}

std::string by_terms_note(std::string const& processes_are, Script::ScriptError const& error) {
    return note(processes_are, "one of its components by itself comes to an error", error.what());
}

} // namespace Calder::Tools
