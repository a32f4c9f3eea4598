#pragma once

#include "core/export.h"

#include <cstddef>

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
    static constexpr std::size_t most_small_bytes = 128;

    /// Of at least 1 byte, aligned to 16. Throws std::bad_alloc.
    [[nodiscard]] static void* allocate(std::size_t bytes);
    /// With the size that was asked for; null is let be.
    static void free(void* block, std::size_t bytes) noexcept;

    /// Whether every block is allocated by itself, for the sake of who looks for mistakes.
    [[nodiscard]] static bool are_of_their_own() noexcept;
};

} // namespace Calder
