#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <pthread.h>
#include <sys/mman.h>

namespace Calder::StateSpace::Testing {

/// Runs `work` on a thread with a stack of that size.
inline void run_with_stack(std::size_t bytes, std::function<void()> work) {
    // Memory of its own, as the system may hand out the larger stack of a thread that has ended.
    void* const stack = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(stack, MAP_FAILED);
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstack(&attributes, stack, bytes), 0);
    auto const body = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, body, &work), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
    munmap(stack, bytes);
}

} // namespace Calder::StateSpace::Testing
