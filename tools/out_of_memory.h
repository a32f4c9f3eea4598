#pragma once

#include <string_view>

namespace Calder::Tools {

/// What the command says, with exit_stopped_early, when an allocation fails. Where that cannot be
/// caught (before main begins, in a destructor), the terminate handler says it, from before the
/// first constructor of a static object on.
constexpr std::string_view out_of_memory = "calder: out of memory\n";

/// How many allocations have failed. For what swallows failures on its way, as streams do.
unsigned failed_allocations();

} // namespace Calder::Tools
