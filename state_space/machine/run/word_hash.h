#pragma once

#include "state_space/machine/run/layout.h"
#include "state_space/mix.h"

namespace Calder::StateSpace {

/// 2^64 by the golden ratio.
constexpr std::uint64_t word_factor = 0x9e3779b97f4a7c15;

/// Of a state's words, what sets of states take places from: the upper bits, and tags: the lower ones. Word by
/// word a multiplication, its high half brought down before the next, and at the end a thorough mixing. With all
/// words but the first given it is one to one.
[[nodiscard]] inline std::uint64_t hash_of_words(Word const* words, std::uint32_t width) noexcept {
    std::uint64_t folded = words[0];
    for (std::uint32_t i = 1; i < width; ++i) {
        folded = ((folded ^ (folded >> 32)) * word_factor) ^ words[i];
    }
    return mix(folded);
}

/// Which word comes first in `width` words of this hash, by those behind it.
[[nodiscard]] inline Word first_of_words(Word const* others, std::uint64_t hash,
                                         std::uint32_t width) noexcept {
    std::uint64_t folded = unmix(hash);
    for (std::uint32_t i = width - 1; i > 0; --i) {
        folded = (folded ^ others[i - 1]) * inverse_of_odd(word_factor);
        folded ^= folded >> 32;
    }
    return folded;
}

} // namespace Calder::StateSpace
