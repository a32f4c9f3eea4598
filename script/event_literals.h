#pragma once

#include "process_compiler/session.h"
#include "script/value_errors.h"

namespace Calder::Script {

/// Puts the declared channels into the program, and looks at the events that are written out: those
/// that are not declared, or want fields where they must be complete, are reported. The others
/// become constants.
void check_event_literals(Telling const& telling, NameTable const& names, Translation& translation,
                          ProcessCompiler::Session const& session, Diagnostics& diagnostics);

} // namespace Calder::Script
