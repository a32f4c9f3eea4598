#pragma once

#include "state_space/machine/compile/leaf.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Calder::StateSpace {

/// Bits of a machine's state: one word of 64 after another.
using Word = std::uint64_t;

/// @{
/// They are few: asking the library would cost more than the work.
inline void copy_words(Word const* from, Word* to, std::uint32_t width) noexcept {
    *to = *from;
    for (std::uint32_t i = 1; i < width; ++i) {
        to[i] = from[i];
    }
}
[[nodiscard]] inline bool are_equal_words(Word const* left, Word const* right,
                                          std::uint32_t width) noexcept {
    for (std::uint32_t i = 0; i < width; ++i) {
        if (left[i] != right[i]) {
            return false;
        }
    }
    return true;
}
/// @}

/// How the states of a configuration's slots are packed into words: each slot has the bits that its
/// leaf's states need, no slot crosses from one word into the next, and what is left over is
/// zero.
class Layout {
  public:
    struct Slot {
        Leaf const* leaf;
        std::uint32_t word;
        std::uint32_t shift;
        Word mask;

        [[nodiscard]] StateNumber read(Word const* words) const noexcept {
            return static_cast<StateNumber>((words[word] >> shift) & mask);
        }
    };

    /// The first `reserved_bits` of the first word are left to the owner.
    Layout(std::vector<Leaf const*> const& leaves, unsigned reserved_bits);

    [[nodiscard]] std::vector<Slot> const& slots() const noexcept { return m_slots; }
    /// At least 1.
    [[nodiscard]] std::uint32_t word_count() const noexcept { return m_word_count; }

  private:
    std::vector<Slot> m_slots;
    std::uint32_t m_word_count = 1;
};

} // namespace Calder::StateSpace
