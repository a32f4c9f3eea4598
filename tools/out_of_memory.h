#pragma once

namespace Calder::Tools {

/// What the command says, with exit_stopped_early, when an allocation fails. Where that cannot be caught
/// (before main begins, in a destructor), the terminate handler says it, from before the first constructor
/// of a static object on.
void tell_out_of_memory() noexcept;

/// How many allocations have failed. For what swallows failures on its way, as streams do.
unsigned failed_allocations();

} // namespace Calder::Tools
