#pragma once

#include "script/syntax_tree.h"
#include "script/token_list.h"

namespace Calder::Script {

/// Of a script without errors: what its assertions ask, in their words.
std::vector<AssertionHead> heads_of(TokenList const& tokens,
                                    std::vector<AssertionSyntax> const& assertions);

/// What is wrong with a trace that goes on.
constexpr char const* tick_ends_trace = "'tick' ends a trace: nothing stands behind it";

} // namespace Calder::Script
