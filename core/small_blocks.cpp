#include "core/small_blocks.h"

#include "core/address_sanitizer.h"
#include "core/large_array.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sys/mman.h>
#include <utility>

namespace Calder {

constinit thread_local SmallBlocks::AtHand blocks_at_hand{};

namespace {

using Block = SmallBlocks::Block;
using Lists = std::array<Block*, SmallBlocks::size_count>; // by size

/// What is left of a piece, at its begin; there is room for a block of any size.
struct Rest {
    Rest* next;
    char* end;
};

/// What threads that ended have left, and how much there is in all.
struct Shared {
    std::mutex mutex;
    Lists left{};
    Rest* rests = nullptr;
    std::size_t bytes = 0;
};

/// Never destroyed: other static objects may still free blocks when it would be.
Shared& shared() {
    static auto& made = *new Shared;
    return made;
}

/// Leaves to others what the thread has of its piece. A host may do each of its tasks in a thread of its own, and what
/// one of them takes must be no more than its blocks.
void leave_rest() noexcept {
    char* const begin = std::exchange(blocks_at_hand.next, nullptr);
    char* const end = std::exchange(blocks_at_hand.end, nullptr);
    if (static_cast<std::size_t>(end - begin) >= SmallBlocks::most_small_bytes) {
        shared().rests = ::new (begin) Rest{shared().rests, end};
    }
}

/// Leaves to others what the thread has.
void leave(void*) noexcept {
    std::scoped_lock const lock(shared().mutex);
    leave_rest();
    for (std::size_t size = 1; size < SmallBlocks::size_count; ++size) {
        Block* const left = std::exchange(shared().left[size], blocks_at_hand.lists[size]);
        blocks_at_hand.lists[size] = nullptr;
        Block** end = &shared().left[size];
        while (left != nullptr && *end != nullptr) {
            end = &(*end)->next;
        }
        if (left != nullptr) {
            *end = left;
        }
    }
    blocks_at_hand.is_noted = false;
}

/// Has `leave` called when the thread ends. A thread-local object with a destructor would do so,
/// too, but the C library ends the program where it lacks the memory to note it.
void leave_at_end() noexcept {
    blocks_at_hand.is_noted = true;
    static pthread_key_t key;
    static bool const is_made = pthread_key_create(&key, leave) == 0;
    if (is_made) {
        pthread_setspecific(key, &blocks_at_hand); // otherwise the thread's blocks are lost
    }
}

constexpr std::size_t page_bytes = 4096;
constexpr std::size_t first_piece = 8 * page_bytes;
constexpr std::size_t last_small_piece = 256 * page_bytes;
/// Large pages are asked for from here on: terms are met at random, which touches more small pages
/// than the processor keeps translations for.
constexpr std::size_t large_piece = 512 * page_bytes;

/// A quarter of what there is, so small programs stay small. All of it will be used, and asking for
/// its pages at once takes a fraction of what it takes to come upon them one by one.
char* new_piece(Shared& all, std::size_t& bytes) {
    if (all.bytes / 4 >= large_piece) {
        bytes = large_piece;
    } else {
        bytes =
            std::clamp(all.bytes / 4 / first_piece * first_piece, first_piece, last_small_piece);
    }
    auto* const piece = static_cast<char*>(
        bytes == large_piece ? allocate_large(bytes)
                             : ::operator new (bytes, std::align_val_t{page_bytes}));
#ifdef MADV_POPULATE_WRITE
    madvise(piece, bytes, MADV_POPULATE_WRITE); // a wish, which older systems do not know
#endif
    all.bytes += bytes;
    return piece;
}

/// What others left of that size, or a block of a piece that they left or of a new one.
void* take_from_all(std::size_t size) {
    Shared& all = shared();
    std::scoped_lock const lock(all.mutex);
    if (Block* const block = all.left[size]) {
        blocks_at_hand.lists[size] = block->next;
        all.left[size] = nullptr;
        return block;
    }
    if (Rest* const rest = all.rests) {
        all.rests = rest->next;
        blocks_at_hand.end = rest->end;
        auto* const begin = reinterpret_cast<char*>(rest);
        blocks_at_hand.next = begin + size * SmallBlocks::grain;
        return begin;
    }
    std::size_t bytes = 0;
    char* const piece = new_piece(all, bytes);
    blocks_at_hand.next = piece + size * SmallBlocks::grain;
    blocks_at_hand.end = piece + bytes;
    return piece;
}

} // namespace

/// Where no freed block of the size is at hand.
void* SmallBlocks::allocate_anew(std::size_t bytes) {
    if (bytes > most_small_bytes) {
        return ::operator new(bytes);
    }
    AtHand& mine = blocks_at_hand;
    std::size_t const size = in_grains(bytes);
    if (static_cast<std::size_t>(mine.end - mine.next) >= size * grain) {
        void* const block = mine.next;
        mine.next += size * grain;
        return block;
    }
    if (are_of_their_own()) {
        return ::operator new(size* grain);
    }
    if (!mine.is_noted) {
        leave_at_end();
    }
    return take_from_all(size);
}

/// What is not small, or the first that the thread frees.
void SmallBlocks::free_otherwise(void* block, std::size_t bytes) noexcept {
    if (bytes > most_small_bytes || are_of_their_own()) {
        ::operator delete(block);
        return;
    }
    leave_at_end();
    free(block, bytes);
}

bool SmallBlocks::are_of_their_own() noexcept {
#ifdef CALDER_WATCHES_ADDRESSES
    return true;
#else
    static bool const wished = [] {
        char const* const wish = std::getenv("CALDER_SMALL_BLOCKS");
        return wish != nullptr && std::strcmp(wish, "malloc") == 0;
    }();
    return wished;
#endif
}

} // namespace Calder
