#include "state_space/machine/large_array.h"

#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace Calder::StateSpace {

namespace {

constexpr std::size_t cache_line = 64;
constexpr std::size_t large_page = std::size_t{2} << 20;

} // namespace

void* allocate_large(std::size_t bytes) {
    std::size_t const unit = bytes < large_page ? cache_line : large_page;
    std::size_t const rounded = (bytes + unit - 1) / unit * unit;
    void* const storage = std::aligned_alloc(unit, rounded);
    if (storage == nullptr) {
        throw std::bad_alloc();
    }
    if (unit == large_page) {
        madvise(storage, rounded, MADV_HUGEPAGE); // where it is refused, small pages do
    }
    return storage;
}

void free_large(void* storage) noexcept {
    std::free(storage);
}

} // namespace Calder::StateSpace
