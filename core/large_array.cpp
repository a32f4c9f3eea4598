#include "core/large_array.h"

#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace Calder {

namespace {

constexpr std::align_val_t cache_line{64};
constexpr std::size_t large_page = std::size_t{2} << 20;

std::size_t rounded_up(std::size_t bytes) {
    return (bytes + large_page - 1) / large_page * large_page;
}

/// Maps a page too many, and gives back what stands before and behind the aligned part.
void* map_aligned(std::size_t bytes) {
    std::size_t const mapped = bytes + large_page;
    void* const start =
        mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED) {
        throw std::bad_alloc();
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

} // namespace

void* allocate_large(std::size_t bytes) {
    if (bytes < large_page) {
        return ::operator new(bytes, cache_line);
    }
    if (bytes > PTRDIFF_MAX - 2 * large_page) {
        throw std::bad_alloc();
    }
    void* const storage = map_aligned(rounded_up(bytes));
    madvise(storage, rounded_up(bytes), MADV_HUGEPAGE); // where it is refused, small pages do
    return storage;
}

void free_large(void* storage, std::size_t bytes) noexcept {
    if (bytes < large_page) {
        ::operator delete(storage, cache_line);
    } else {
        munmap(storage, rounded_up(bytes));
    }
}

} // namespace Calder
