#include "tools/search_options.h"

#include "state_space/available_memory.h"
#include "tools/error_format.h"
#include "tools/summary.h"

#include <algorithm>
#include <limits>
#include <thread>
#include <unistd.h>

namespace Calder::Tools {

std::uint64_t SearchOptions::memory_limit() const {
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max() / bytes_per_mib;
    return max_memory_mib ? std::min(*max_memory_mib, most) * bytes_per_mib
                          : StateSpace::default_memory_limit();
}

unsigned SearchOptions::thread_count() const {
    return threads.value_or(std::max(std::thread::hardware_concurrency(), 1U));
}

bool SearchOptions::shows_progress() const {
    return !quiet && error_format() == ErrorFormat::text &&
           (progress || isatty(STDERR_FILENO) == 1);
}

} // namespace Calder::Tools
