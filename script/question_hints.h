#pragma once

#include "script/hints.h"

namespace Calder::Script {

/// For errors in assertions, and for questions that stand in none.
std::optional<Hint> question_hint(TokenList const& tokens, SyntaxErrorContext const& context);

} // namespace Calder::Script
