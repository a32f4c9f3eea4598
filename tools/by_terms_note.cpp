#include "tools/by_terms_note.h"

#include "tools/machine_text.h"

#include <fmt/core.h>

#include <utility>

namespace Calder::Tools {

namespace {

Message note(std::string const& processes_are, std::string const& reason,
             std::vector<Remark> remarks) {
    return {Severity::note, fmt::format("{} explored term by term: {}", processes_are, reason),
            std::move(remarks)};
}

} // namespace

Message by_terms_note(std::string const& processes_are, std::string const& reason,
                      std::vector<StateSpace::RefusedRecursion> const& refused,
                      Script::Script const& script) {
    return note(processes_are, reason, recursion_notes(refused, script));
}

Message by_terms_note(std::string const& processes_are, Script::ScriptError const& error) {
    return note(processes_are, "one of its components by itself comes to an error",
                remarks_of(error));
}

} // namespace Calder::Tools
