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

/// By which the product with an odd number is divided, modulo 2^64: Newton's iteration, which doubles the bits that
/// are right, five of them from the beginning.
[[nodiscard]] constexpr std::uint64_t inverse_of_odd(std::uint64_t number) noexcept {
    std::uint64_t inverse = 3 * number ^ 2;
    for (unsigned bits = 5; bits < 64; bits *= 2) {
        inverse *= 2 - number * inverse;
    }
    return inverse;
}

/// Of which value `mix` gives this.
[[nodiscard]] constexpr std::uint64_t unmix(std::uint64_t mixed) noexcept {
    mixed ^= mixed >> 33;
    mixed *= inverse_of_odd(0xc4ceb9fe1a85ec53);
    mixed ^= mixed >> 33;
    mixed *= inverse_of_odd(0xff51afd7ed558ccd);
    return mixed ^ (mixed >> 33);
}

} // namespace Calder::StateSpace
