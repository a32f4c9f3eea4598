#include "tools/address_space_bound.h"

#include "state_space/memory.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace Calder::Tools {

namespace {

constexpr std::uint64_t unknown = std::numeric_limits<std::uint64_t>::max();

/// The first number of /proc/self/statm, in bytes.
std::uint64_t address_space_bytes() {
    int const file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return unknown;
    }
    char text[32];
    ssize_t const length = read(file, text, sizeof text);
    close(file);
    std::uint64_t pages = 0;
    std::from_chars(text, text + (length < 0 ? 0 : length), pages);
    return pages == 0 ? unknown : pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

AddressSpaceBound::AddressSpaceBound(std::uint64_t most_bytes) {
    getrlimit(RLIMIT_AS, &m_before);
    std::uint64_t const held = address_space_bytes();
    std::uint64_t const resident = StateSpace::resident_bytes();
    std::uint64_t const more = most_bytes - std::min(most_bytes, resident);
    if (held > unknown - more) {
        return; // not to be told from no bound
    }
    rlimit bound = m_before;
    bound.rlim_cur = std::min<std::uint64_t>(m_before.rlim_cur, held + more);
    setrlimit(RLIMIT_AS, &bound);
}

AddressSpaceBound::~AddressSpaceBound() {
    setrlimit(RLIMIT_AS, &m_before);
}

} // namespace Calder::Tools
