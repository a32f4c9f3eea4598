#pragma once

#include "process_compiler/session.h"
#include "script/event_table.h"
#include "script/syntax_tree.h"
#include "script/token_list.h"

#include <vector>

namespace Calder::Script {

/// Which definition runs which: what the names in terms stand for, and where they lead in circles.
struct DefinitionGraph {
    /// By node: the definition that a name stands for; none for an unknown name and other nodes.
    std::vector<unsigned> targets;
    /// By definition.
    std::vector<bool> is_on_cycle;
    /// All definitions, each behind those whose names it replaces by what they name.
    std::vector<unsigned> order;
};

/// Reports names without a definition and names with two. Linear in the size of the tree, and
/// without recursion, however long a chain of names is.
DefinitionGraph connect_definitions(TokenList const& tokens, SyntaxTree const& tree,
                                    EventTable const& events, Diagnostics& diagnostics);

} // namespace Calder::Script
