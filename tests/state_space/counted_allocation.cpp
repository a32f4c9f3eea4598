#include "tests/state_space/counted_allocation.h"

#include "core/small_blocks.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations = 0;
std::atomic<std::ptrdiff_t> blocks = 0;
std::atomic<std::size_t> until_failure = 0; // 0: none is to fail

/// Whether this one is to fail.
[[maybe_unused]] bool is_counted_out() {
    std::size_t left = until_failure;
    while (left != 0 && !until_failure.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

[[maybe_unused]] void give_back(void* block) noexcept {
    blocks -= block == nullptr ? 0 : 1;
    std::free(block);
}

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
    if (is_counted_out()) {
        return nullptr;
    }
    ++blocks;
    return std::malloc(size);
}

void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    give_back(block);
}

void operator delete(void* block, std::nothrow_t const&) noexcept {
    give_back(block);
}

void operator delete(void* block, std::size_t) noexcept {
    give_back(block);
}

#endif

std::size_t Calder::StateSpace::Testing::allocation_count() {
    return allocations;
}

std::ptrdiff_t Calder::StateSpace::Testing::blocks_in_use() {
    return blocks;
}

bool Calder::StateSpace::Testing::allocations_can_fail() {
#ifdef CALDER_OPERATORS_ARE_TAKEN
    return false;
#else
    return SmallBlocks::are_of_their_own();
#endif
}

Calder::StateSpace::Testing::FailingAllocation::FailingAllocation(std::size_t number) {
    until_failure = number;
}

Calder::StateSpace::Testing::FailingAllocation::~FailingAllocation() {
    until_failure = 0;
}

bool Calder::StateSpace::Testing::FailingAllocation::has_failed() const {
    return until_failure == 0;
}
