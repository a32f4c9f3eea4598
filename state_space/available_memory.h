#pragma once

#include <cstdint>

namespace Calder::StateSpace {

/// The bytes of main memory that this process could still take before the system would have to swap
/// or to kill: what the machine has available, or what is left of the limit of the control group
/// (version 2), whichever is less. The largest number when the system tells neither.
[[nodiscard]] std::uint64_t available_bytes();

/// Without a limit of the user's, most of the memory that there is, in bytes of the resident set: rather
/// a search that says how far it came than one that the system kills.
[[nodiscard]] std::uint64_t default_memory_limit();

} // namespace Calder::StateSpace
