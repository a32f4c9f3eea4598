#include "state_space/stack_guard.h"

#include <algorithm>
#include <cstddef>
#include <pthread.h>

namespace Calder::StateSpace {

namespace {

constexpr std::size_t most_counted_on = std::size_t{1} << 30;
constexpr std::size_t least_kept = std::size_t{256} << 10;
/// Counted on below the present frame where the system does not tell the bounds.
constexpr std::size_t counted_on_without_bounds = std::size_t{1} << 20;

/// The stack of this thread: where it ends, and how much is counted on below that. It grows
/// downwards.
struct Stack {
    std::uintptr_t end;
    std::size_t size;
};

Stack this_stack() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void* lowest = nullptr;
        std::size_t size = 0;
        int const error = pthread_attr_getstack(&attributes, &lowest, &size);
        pthread_attr_destroy(&attributes);
        if (error == 0) {
            return {reinterpret_cast<std::uintptr_t>(lowest) + size,
                    std::min(size, most_counted_on)};
        }
    }
    return {reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)),
            counted_on_without_bounds};
}

std::uintptr_t lowest_wanted() {
    Stack const stack = this_stack();
    return stack.end - stack.size + std::max(stack.size / 2, least_kept);
}

} // namespace

// The bounds of a thread's stack do not change, and the system takes 100 microseconds to tell them.
StackGuard::StackGuard() {
    thread_local std::uintptr_t const lowest = lowest_wanted();
    m_lowest_wanted = lowest;
}

} // namespace Calder::StateSpace
