#include "core/large_array.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <sys/mman.h>

namespace Calder {

namespace {

constexpr std::align_val_t cache_line{64};

constexpr std::size_t most_bytes = PTRDIFF_MAX / 2 - 2 * large_page;

std::size_t rounded_up(std::size_t bytes) {
    return (bytes + large_page - 1) / large_page * large_page;
}

/// Maps a page too many, and gives back what stands before and behind the aligned part. Null where there is no
/// room.
void* map_aligned(std::size_t bytes, int protection) {
    std::size_t const mapped = bytes + large_page;
    void* const start = mmap(nullptr, mapped, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) {
        return nullptr;
    }
    std::size_t const before =
        (large_page - reinterpret_cast<std::uintptr_t>(start) % large_page) % large_page;
    char* const aligned = static_cast<char*>(start) + before;
    if (before != 0) {
        munmap(start, before);
    }
    munmap(aligned + bytes, large_page - before);
    return aligned;
}

/// In place if nothing stands behind it, otherwise to a place that is mapped first: the system by itself may find one
/// that is not aligned, where pages of 2 MiB become small ones. That is still better than nothing where there is
/// no address space for both. MAP_FAILED where there is no room.
void* remap_larger(void* storage, std::size_t old_bytes, std::size_t bytes) {
    void* const same = mremap(storage, old_bytes, bytes, 0);
    if (same != MAP_FAILED) {
        return same;
    }
    // Some systems want room for what is new besides the place. With that at hand the move does not fail; it
    // could not be told afterwards whether the place is still ours, or another thread's.
    std::size_t const more = bytes - old_bytes;
    char* const place = static_cast<char*>(map_aligned(bytes + more, PROT_NONE));
    if (place == nullptr) {
        return mremap(storage, old_bytes, bytes, MREMAP_MAYMOVE);
    }
    munmap(place + bytes, more);
    return mremap(storage, old_bytes, bytes, MREMAP_MAYMOVE | MREMAP_FIXED, place);
}

} // namespace

void* allocate_large(std::size_t bytes) {
    if (bytes < large_page) {
        return ::operator new(bytes, cache_line);
    }
    if (bytes > most_bytes) {
        throw std::bad_alloc();
    }
    void* const storage = map_aligned(rounded_up(bytes), PROT_READ | PROT_WRITE);
    if (storage == nullptr) {
        throw std::bad_alloc();
    }
    madvise(storage, rounded_up(bytes), MADV_HUGEPAGE); // where it is refused, small pages do
    return storage;
}

void* grow_large(void* storage, std::size_t old_bytes, std::size_t bytes) {
    if (old_bytes >= large_page) {
        if (bytes > most_bytes) {
            throw std::bad_alloc();
        }
        void* const larger = remap_larger(storage, rounded_up(old_bytes), rounded_up(bytes));
        if (larger == MAP_FAILED) {
            throw std::bad_alloc();
        }
        return larger;
    }
    void* const larger = allocate_large(bytes);
    if (old_bytes != 0) {
        std::memcpy(larger, storage, old_bytes);
        free_large(storage, old_bytes);
    }
    return larger;
}

void free_large(void* storage, std::size_t bytes) noexcept {
    if (bytes < large_page) {
        ::operator delete(storage, cache_line);
    } else {
        munmap(storage, rounded_up(bytes));
    }
}

} // namespace Calder
