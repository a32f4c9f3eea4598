#pragma once

#include "script/script.h"
#include "state_space/machine/machine_exploration.h"
#include "tools/messages.h"

#include <string>
#include <vector>

namespace Calder::Tools {

/// Tells people that processes are explored term by term although a machine was wanted: which ones, as
/// in "P is" or "P and Q are", and why, a part of a sentence with the recursion that no machine can
/// follow.
Message by_terms_note(std::string const& processes_are, std::string const& reason,
                      std::vector<StateSpace::RefusedRecursion> const& refused,
                      Script::Script const& script);

/// The same where a component by itself comes to an error of values: the process may never let it
/// come so far.
Message by_terms_note(std::string const& processes_are, Script::ScriptError const& error);

} // namespace Calder::Tools
