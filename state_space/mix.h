#pragma once

#include <cstdint>

namespace Calder::StateSpace {

/// Spreads every bit of `value` over all bits of the result: the finaliser of MurmurHash3 (Appleby,
/// 2011). One to one. What the hash tables here take slots from, as hash codes of terms are even.
[[nodiscard]] constexpr std::uint64_t mix(std::uint64_t value) noexcept {
    value ^= value >> 33;
    value *= 0xff51afd7ed558ccd;
    value ^= value >> 33;
    value *= 0xc4ceb9fe1a85ec53;
    return value ^ (value >> 33);
}

} // namespace Calder::StateSpace
