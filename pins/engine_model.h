#pragma once

#include "pins/compiled_script.h"
#include "pins/ltsmin_headers.h"

namespace Calder::Pins {

/// Tells the engine's empty model all of what was compiled, and keeps that for as long as the engine
/// asks, which is until the process ends. The columns are the slots of its vector, each named as the
/// column is; its one edge label, `action`, is the event by its name. Where there is a column that tells
/// the end after tick, it is the state label by which the engine tells valid ends from deadlocks.
///
/// One thread asks at a time: the workers of an engine are processes wherever it has loaded a language
/// module, since it cannot know what one could stand.
void hand_over(model_t model, CompiledScript compiled);

/// Tells what is being handled on standard error, and ends every worker with an exit code that is none
/// of a search: called wherever an exception would get into the engine, which is C.
[[noreturn]] void end_with_current_exception() noexcept;

} // namespace Calder::Pins
