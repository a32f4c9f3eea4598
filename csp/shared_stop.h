#pragma once

#include "csp/external_choice_process.h"

namespace Calder::ProcessCompiler::CSP {

// Every file that ends a term by STOP has one shared instance of its own, built when the library is
// loaded and released when it is unloaded.
namespace {

[[maybe_unused]] ProcessPointer const shared_stop(new ExternalChoiceProcess(0U));

} // namespace

} // namespace Calder::ProcessCompiler::CSP
