#pragma once

#include "script/token_list.h"

namespace Calder::Script {

/// Tells from what stands around them which names are defined (`NAME =`, `NAME(…) =`), locally or
/// not, so that a new definition can be told from its first token; and which `||` are followed by
/// pairs of sets and processes and not by values; and which `not` belongs to an assertion. One pass over the tokens. Reports reserved words
/// that are defined.
void classify(TokenList& list, Diagnostics& diagnostics);

} // namespace Calder::Script
