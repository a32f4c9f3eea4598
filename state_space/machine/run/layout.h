#pragma once

#include "state_space/machine/compile/leaf.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Calder::StateSpace {

/// Bits of a machine's state: one word of 64 after another.
using Word = std::uint64_t;

/// Most states are one word; asking the library to copy it would cost more than the copy.
inline void copy_words(Word const* from, Word* to, std::uint32_t width) noexcept {
    if (width == 1) {
        *to = *from;
    } else {
        std::copy_n(from, width, to);
    }
}

/// For the same reason.
[[nodiscard]] inline bool equal_words(Word const* one, Word const* other,
                                      std::uint32_t width) noexcept {
    return *one == *other && (width == 1 || std::equal(one + 1, one + width, other + 1));
}

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
