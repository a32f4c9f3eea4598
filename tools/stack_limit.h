#pragma once

namespace Calder::Tools {

/// Throws CommandError when the stack is limited (`ulimit -s`) to less than going through a term at
/// the limit of nesting takes: better said now than in the middle of the work.
void require_stack();

} // namespace Calder::Tools
