#include "state_space/memory.h"

#include <charconv>
#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

namespace Calder::StateSpace {

namespace {

/// The second number of /proc/self/statm; 0 when it cannot be read. Without a stream: this is asked
/// where memory may have run out.
std::uint64_t resident_pages() {
    int const file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return 0;
    }
    char text[128];
    ssize_t const length = read(file, text, sizeof text);
    close(file);
    char const* const end = text + (length < 0 ? 0 : length);
    std::uint64_t all_pages = 0;
    auto const first = std::from_chars(text, end, all_pages);
    std::uint64_t resident = 0;
    if (first.ptr != end) {
        std::from_chars(first.ptr + 1, end, resident);
    }
    return resident;
}

} // namespace

std::uint64_t resident_bytes() {
    static std::uint64_t const page_size = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    std::uint64_t const pages = resident_pages();
    return pages != 0 ? pages * page_size : peak_resident_bytes();
}

std::uint64_t peak_resident_bytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024; // given in KiB
}

void give_back_freed_memory() noexcept {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace Calder::StateSpace
