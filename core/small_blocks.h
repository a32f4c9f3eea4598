#pragma once

#include "core/export.h"

#include <array>
#include <cstddef>
#include <new>

namespace Calder {

/// Memory for what terms consist of: very many small objects that come and go. Up to
/// `most_small_bytes` it is a block from large pieces of memory, which each thread gives and takes
/// without asking others; beyond that it is what `operator new` gives. A block may be freed by
/// another thread than that which asked for it.
///
/// What is freed is kept for blocks of the same size, and not given back while the program runs.
/// Under the address sanitizer, and where the environment says CALDER_SMALL_BLOCKS=malloc, every
/// block is one of its own, so that mistakes are found and allocations can be counted.
class CALDER_CORE_EXPORT SmallBlocks {
  public:
    /// A request of just so many bytes is small, too.
    static constexpr std::size_t most_small_bytes = 256;

    /// Of at least 1 byte, aligned to 16. Throws std::bad_alloc.
    [[nodiscard]] static inline void* allocate(std::size_t bytes);
    /// With the size that was asked for; null is let be.
    static inline void free(void* block, std::size_t bytes) noexcept;

    /// Whether every block is allocated by itself, for the sake of who looks for mistakes.
    [[nodiscard]] static bool are_of_their_own() noexcept;

    /// A block that nobody has.
    struct Block {
        /// In a list; null at its end.
        Block* next;
    };

    /// What sizes are rounded up to, and blocks aligned.
    static constexpr std::size_t grain = 16;
    /// How many sizes there are, in grains; that of 0 is not used.
    static constexpr std::size_t size_count = most_small_bytes / grain + 1;

    /// What one thread has at hand. Nothing has to run for it where a thread begins.
    struct AtHand {
        /// By size.
        std::array<Block*, size_count> lists;
        /// @{
        /// Of the piece from which blocks are cut.
        char* next;
        char* end;
        /// @}
        /// Freed blocks may be kept: others get them when the thread ends.
        bool is_noted;
    };

  private:
    static constexpr std::size_t in_grains(std::size_t bytes) {
        return (bytes + grain - 1) / grain;
    }
    static void* allocate_anew(std::size_t bytes);
    static void free_otherwise(void* block, std::size_t bytes) noexcept;
};

/// Of this thread. Found without a call, as almost every allocation is a few instructions there.
extern CALDER_CORE_EXPORT constinit thread_local SmallBlocks::AtHand blocks_at_hand
    __attribute__((tls_model("initial-exec")));

inline void* SmallBlocks::allocate(std::size_t bytes) {
    if (bytes <= most_small_bytes) [[likely]] {
        Block*& first = blocks_at_hand.lists[in_grains(bytes)];
        if (Block* const block = first) [[likely]] {
            first = block->next;
            return block;
        }
    }
    return allocate_anew(bytes);
}

inline void SmallBlocks::free(void* block, std::size_t bytes) noexcept {
    if (block == nullptr) {
        return;
    }
    AtHand& mine = blocks_at_hand;
    if (bytes > most_small_bytes || !mine.is_noted) [[unlikely]] {
        free_otherwise(block, bytes);
        return;
    }
    Block*& first = mine.lists[in_grains(bytes)];
    first = ::new (block) Block{first};
}

} // namespace Calder
