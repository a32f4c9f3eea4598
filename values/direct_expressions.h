#pragma once

#include "values/expression.h"

namespace Calder::Values {

constexpr unsigned most_direct_operands = 6;

/// Marks the expressions that are evaluated by plain recursion, without a task for each part: what
/// has no call but such as ask the host, no comprehension, and little depth and width. To be called when the
/// modes of the definitions are known; what is added behind stays unmarked. Operands must stand in
/// front of what they are for. Linear.
void mark_direct_expressions(Program& program);

} // namespace Calder::Values
