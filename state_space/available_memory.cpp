#include "state_space/available_memory.h"

#include "state_space/memory.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <string>

namespace Calder::StateSpace {

namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t available_in_machine() {
    std::ifstream file("/proc/meminfo");
    for (std::string word; file >> word;) {
        std::uint64_t kib = 0;
        if (word == "MemAvailable:" && file >> kib) {
            return kib * 1024;
        }
    }
    return unlimited;
}

std::optional<std::uint64_t> number_in(char const* name) {
    std::ifstream file(name);
    std::uint64_t number = 0;
    if (file >> number) {
        return number;
    }
    return std::nullopt; // also for the word "max"
}

std::uint64_t available_in_group() {
    auto const limit = number_in("/sys/fs/cgroup/memory.max");
    auto const taken = number_in("/sys/fs/cgroup/memory.current");
    if (!limit || !taken) {
        return unlimited;
    }
    return *limit - std::min(*limit, *taken);
}

} // namespace

std::uint64_t available_bytes() {
    return std::min(available_in_machine(), available_in_group());
}

std::uint64_t default_memory_limit() {
    return resident_bytes() + available_bytes() / 10 * 9;
}

} // namespace Calder::StateSpace
