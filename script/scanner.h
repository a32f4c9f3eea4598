#pragma once

#include "script/token_list.h"

namespace Calder::Script {

/// Splits a text of at most text_limit bytes into tokens. What cannot be one is reported and stands
/// in the list as one BAD token for each run of it, so that the grammar knows that something was
/// there. A name that "=" follows becomes one DEFINED_NAME: a new definition can be told from its
/// first token.
TokenList scan(std::string_view text, Diagnostics& diagnostics);

} // namespace Calder::Script
