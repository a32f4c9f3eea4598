#pragma once

#include "script/names.h"

namespace Calder::Script {

/// Finds which definition or variable each name stands for, the innermost one; adds the local
/// definitions to the table, and what they need from around them. What nests more deeply than
/// a term may is reported, and lost.
void bind_names(TokenList const& tokens, SyntaxTree const& tree, NameTable& names,
                Diagnostics& diagnostics);

} // namespace Calder::Script
