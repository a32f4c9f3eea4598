#pragma once

#include "core/export.h"

#include <string>

namespace Calder {

/// Ends the program after a misuse that can be told in words: writes `message` and a newline to
/// standard error, then aborts.
[[noreturn]] CALDER_CORE_EXPORT void panic(std::string const& message);

} // namespace Calder
