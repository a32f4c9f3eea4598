#pragma once

#include "tools/answered.h"

#include <string>

namespace Calder::Tools {

/// What decided the question, for people: lines with titles, the steps with who takes part in each,
/// what repeats folded, and what matters at the end. Empty where there is nothing to show.
///
/// Of an assertion with `not` it shows what decided the question behind the `not`.
std::string evidence_text(Answered const& answered);

} // namespace Calder::Tools
