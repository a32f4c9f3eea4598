#pragma once

#include "refinement/questions.h"
#include "script/script.h"
#include "tools/messages.h"

#include <functional>

namespace Calder::Tools {

/// Is told what is of interest beside the answer.
using TakeNote = std::function<void(Message const& note)>;

/// Answers what an assertion asks, without its `not`. Where a component by itself comes to an error of
/// values it asks again term by term: the process may never let it come so far. Throws ScriptError
/// when that comes to one, too.
Refinement::Answer ask(Script::Assertion const& assertion, Script::Script const& script,
                       Refinement::QuestionOptions const& options, TakeNote const& take_note);

} // namespace Calder::Tools
