#pragma once

#include <cstddef>
#include <cstdint>

namespace Calder {

/// The one step by which hash codes are built: mixes the value `k` into the running value `h`.
///
/// The shape is that of Hash128to64 of CityHash (Pike and Alakuijala, 2011) with another
/// multiplier. The multiplier is even, so every result is even: a table that takes its slot from
/// the low bits must mix the code again first.
[[nodiscard]] constexpr std::uint64_t hash_combine(std::uint64_t h, std::uint64_t k) noexcept {
    constexpr std::uint64_t multiplier = 0x9e3779b97f4a8006;
    std::uint64_t a = (k ^ h) * multiplier;
    a ^= a >> 47;
    std::uint64_t b = (h ^ a) * multiplier;
    b ^= b >> 47;
    return b * multiplier;
}

/// With what the code of a sequence begins.
[[nodiscard]] constexpr std::uint64_t hash_of_length(std::size_t length) noexcept {
    return hash_combine(0xc1, length);
}

/// The length of a sequence and what each element contributes, in order, mixed.
template <typename Sequence, typename Word>
std::uint64_t hash_sequence(Sequence const& elements, Word const& word) {
    std::uint64_t hash = hash_of_length(elements.size());
    for (auto const& element : elements) {
        hash = hash_combine(hash, word(element));
    }
    return hash;
}

/// The same of pairs of numbers.
template <typename Pairs> std::uint64_t hash_pairs(Pairs const& pairs) {
    return hash_sequence(pairs,
                         [](auto const& pair) { return hash_combine(pair.first, pair.second); });
}

} // namespace Calder
