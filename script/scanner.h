#pragma once

#include "script/token_list.h"

namespace Calder::Script {

/// Splits the sources, of at most text_limit bytes in all, into tokens: the first one is the script,
/// in front of whose tokens stand those of the others. Files that it includes are read, each once,
/// become sources too, and stand in the place of the `include`. What cannot be a token is reported
/// and stands in the list as one BAD token for each run of it, so that the grammar knows that
/// something was there.
TokenList scan(Sources& sources, Include const& include, Diagnostics& diagnostics);

} // namespace Calder::Script
