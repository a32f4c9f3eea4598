#pragma once

#include <cstddef>
#include <new>
#include <sys/mman.h>
#include <vector>

namespace Calder {

constexpr std::size_t large_page_bytes = std::size_t{2} << 20U;

/// Memory that is used whole. From the size of a large page on it asks for such pages, and is
/// aligned to them: where reading goes all over it, finding a page of 4 KiB takes longer than the
/// reading. Throws std::bad_alloc.
[[nodiscard]] inline void* allocate_on_large_pages(std::size_t bytes) {
    if (bytes < large_page_bytes) {
        return ::operator new(bytes);
    }
    void* const made = ::operator new (bytes, std::align_val_t{large_page_bytes});
    madvise(made, bytes, MADV_HUGEPAGE); // a wish: where it is not met, all is as before
    return made;
}

/// With the size that was asked for.
inline void free_on_large_pages(void* memory, std::size_t bytes) noexcept {
    if (bytes < large_page_bytes) {
        ::operator delete(memory);
    } else {
        ::operator delete (memory, std::align_val_t{large_page_bytes});
    }
}

template <typename T> struct LargePageAllocator {
    using value_type = T;

    LargePageAllocator() = default;
    template <typename Other> LargePageAllocator(LargePageAllocator<Other> const&) noexcept {}

    T* allocate(std::size_t count) {
        return static_cast<T*>(allocate_on_large_pages(count * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t count) noexcept {
        free_on_large_pages(memory, count * sizeof(T));
    }

    friend bool operator==(LargePageAllocator const&, LargePageAllocator const&) { return true; }
};

/// For arrays of millions of elements.
template <typename T> using LargeVector = std::vector<T, LargePageAllocator<T>>;

} // namespace Calder
