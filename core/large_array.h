#pragma once

#include "core/export.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace Calder {

/// Of which the system may have a page for a table, in bytes.
constexpr std::size_t large_page = std::size_t{2} << 20;

/// Storage for `bytes`, not initialised, aligned to a cache line. What is at least 2 MiB is mapped
/// for itself, aligned to that, and asks the system for pages of that size: a table that is entered
/// at random touches more small pages than the processor keeps translations for. Pages never
/// written to take no memory. Throws std::bad_alloc.
[[nodiscard]] CALDER_CORE_EXPORT void* allocate_large(std::size_t bytes);

/// `bytes` as it was asked for.
CALDER_CORE_EXPORT void free_large(void* storage, std::size_t bytes) noexcept;

/// Such storage for `bytes`, more than `old_bytes`, that begins with what `storage` has, which is
/// freed. What is mapped is not copied: its pages get another address. Throws std::bad_alloc, and
/// `storage` is then as before.
[[nodiscard]] CALDER_CORE_EXPORT void* grow_large(void* storage, std::size_t old_bytes,
                                                  std::size_t bytes);

/// How a LargeArray frees its storage.
struct FreeLarge {
    /// As they were asked for.
    std::size_t bytes = 0;

    /// See free_large.
    void operator()(void* storage) const noexcept { free_large(storage, bytes); }
};

/// An array of elements that need neither construction nor destruction.
template <typename T> using LargeArray = std::unique_ptr<T[], FreeLarge>;

/// Elements that are still to be written. Throws std::bad_alloc.
template <typename T> [[nodiscard]] LargeArray<T> make_large_array(std::size_t count) {
    std::size_t const bytes = count * sizeof(T);
    return LargeArray<T>(static_cast<T*>(allocate_large(bytes)), FreeLarge{bytes});
}

/// How a LargeVector allocates, as the standard wants it told.
template <typename T> struct LargeAllocator {
    /// Of the vector.
    using value_type = T;

    LargeAllocator() = default;
    /// They are all the same.
    template <typename Other> LargeAllocator(LargeAllocator<Other> const&) noexcept {}

    /// Throws std::bad_alloc.
    T* allocate(std::size_t count) { return static_cast<T*>(allocate_large(count * sizeof(T))); }
    /// With the count that was asked for.
    void deallocate(T* storage, std::size_t count) noexcept {
        free_large(storage, count * sizeof(T));
    }

    /// What one allocates another one can free.
    friend bool operator==(LargeAllocator const&, LargeAllocator const&) { return true; }
};

/// A vector that may come to millions of elements.
template <typename T> using LargeVector = std::vector<T, LargeAllocator<T>>;

} // namespace Calder
