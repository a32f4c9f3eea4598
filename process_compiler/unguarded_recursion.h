#pragma once

#include "process_compiler/named_process_source.h"

#include <vector>

namespace Calder::ProcessCompiler {

/// A cycle of names, each of which runs the next one from its start; the last runs the first.
using NameCycle = std::vector<NamedProcessPointer>;

/// The recursion without a guard: names that reach themselves through arguments that run from the
/// start, so that asking for their transitions would never end. `P = P [] a -> P` is one,
/// `P = a -> P` is not. Decided from the constructs' own answers (`process_state`), without asking
/// for a transition. At least one cycle is found for every set of names that reach each other so,
/// and at most one for each name; names that were never defined lead nowhere.
CALDER_PROCESS_COMPILER_EXPORT std::vector<NameCycle>
find_unguarded_recursion(NamedProcessSource const& source);

} // namespace Calder::ProcessCompiler
