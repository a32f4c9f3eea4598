#pragma once

#include <cstdint>
#include <vector>

namespace Calder::StateSpace {

/// The bytes of main memory that this process occupies now. Where the system does not tell
/// (/proc is not mounted), the peak.
[[nodiscard]] std::uint64_t resident_bytes();

/// The most that it ever occupied.
[[nodiscard]] std::uint64_t peak_resident_bytes();

/// Gives what was freed back to the system. The allocator keeps much of it otherwise, for what is
/// allocated next, and it counts as occupied: after a search to a limit of 30 MiB, some 20 MiB.
void give_back_freed_memory() noexcept;

/// What the vector has allocated.
template <typename T, typename Allocator>
[[nodiscard]] std::uint64_t allocated_bytes(std::vector<T, Allocator> const& vector) noexcept {
    return std::uint64_t{vector.capacity()} * sizeof(T);
}

/// What the vector will occupy twice for a moment if `additions` more elements make it grow: its
/// elements are then copied to a larger block.
template <typename T, typename Allocator> [[nodiscard]] std::uint64_t
growth_bytes(std::vector<T, Allocator> const& vector, std::uint64_t additions) noexcept {
    return vector.capacity() - vector.size() < additions ? std::uint64_t{vector.size()} * sizeof(T)
                                                         : 0;
}

} // namespace Calder::StateSpace
