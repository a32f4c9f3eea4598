#pragma once

#include "core/small_blocks.h"

#include <cstddef>
#include <limits>
#include <new>

namespace Calder {

/// For a container that comes and goes as often as terms do, and mostly has few elements.
template <typename T> struct SmallBlockAllocator {
    static_assert(alignof(T) <= SmallBlocks::grain);

    /// What containers ask for.
    using value_type = T;

    SmallBlockAllocator() noexcept = default;
    /// For the elements of a container that asks for something else, too.
    template <typename Other> SmallBlockAllocator(SmallBlockAllocator<Other> const&) noexcept {}

    /// Of one element at least. Throws std::bad_alloc.
    [[nodiscard]] static T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(SmallBlocks::allocate(count * sizeof(T)));
    }
    /// With the count that was asked for.
    static void deallocate(T* elements, std::size_t count) noexcept {
        SmallBlocks::free(elements, count * sizeof(T));
    }

    /// All of them are one.
    bool operator==(SmallBlockAllocator const&) const noexcept = default;
};

} // namespace Calder
