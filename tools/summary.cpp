#include "tools/summary.h"

#include "state_space/memory.h"
#include "tools/standard_streams.h"

#include <fmt/core.h>

namespace Calder::Tools {

std::string titled_line(std::string_view title, std::string_view text) {
    return fmt::format("{:<{}}{}\n", title, title_width, text);
}

void tell(std::string_view title, std::string_view text) {
    print_result(titled_line(title, text));
}

void tell_time_and_memory(std::chrono::duration<double> time) {
    tell("time", fmt::format("{:.2f} s", time.count()));
    tell("peak memory",
         fmt::format("{:.1f} MiB", static_cast<double>(StateSpace::peak_resident_bytes()) /
                                       static_cast<double>(bytes_per_mib)));
}

} // namespace Calder::Tools
