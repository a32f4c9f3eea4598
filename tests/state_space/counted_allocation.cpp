#include "tests/state_space/counted_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0;

} // namespace

// The thread sanitizer brings its own operators and lets nobody replace them: nothing is counted.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define CALDER_OPERATORS_ARE_TAKEN
#endif
#endif

#ifndef CALDER_OPERATORS_ARE_TAKEN

// The operators of the whole program. In a file of their own: where g++ 12 sees one of a pair and
// not the other, it takes them for mismatched.

void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    ++allocations;
    return std::malloc(size);
}

void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::nothrow_t const&) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

#endif

std::size_t Calder::StateSpace::Testing::allocation_count() {
    return allocations;
}
