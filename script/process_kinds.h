#pragma once

#include "script/names.h"

namespace Calder::Script {

/// Decides of each definition whether it is a process or a value. Linear, and without recursion,
/// however long a chain of names is.
void infer_processes(TokenList const& tokens, SyntaxTree const& tree, NameTable& names);

} // namespace Calder::Script
