#pragma once

#include "csp/external_choice_process.h"

namespace Calder::ProcessCompiler::CSP {

// Nine files have one shared STOP each, built when the library is loaded and released when it is
// unloaded: those that end a term by it, operator_helpers for all that synchronise, and, for the
// sake of the others' order, run_process, which does not use it.
namespace {

[[maybe_unused]] ProcessPointer const shared_stop(new ExternalChoiceProcess(0U));

} // namespace

} // namespace Calder::ProcessCompiler::CSP
