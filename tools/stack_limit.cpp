#include "tools/stack_limit.h"

#include "tools/command_error.h"

#include <fmt/core.h>

#include <sys/resource.h>

namespace Calder::Tools {

namespace {

/// Half of this is too little for printing a term at the limit of nesting; exploring one may take
/// more, and is watched.
constexpr rlim_t least_kib = 1024;

} // namespace

void require_stack() {
    rlimit stack{};
    getrlimit(RLIMIT_STACK, &stack);
    if (rlim_t const kib = stack.rlim_cur / 1024; kib < least_kib) {
        throw CommandError(fmt::format("the stack is limited to {} KiB, and {} KiB are "
                                       "needed; 'ulimit -s 8192' allows what is usual",
                                       kib, least_kib),
                           exit_stopped_early);
    }
}

} // namespace Calder::Tools
