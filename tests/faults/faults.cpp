// Preloaded into the command: makes an allocation, a mapping or a start of a thread fail, or sends a signal
// while a file is written.
//
//   CALDER_FAIL=N         the N-th allocation of the process fails
//   CALDER_FAIL_ON=N      the N-th and all later ones fail
//   CALDER_FAIL_MAP=N     the N-th time that memory is mapped, or a mapping made larger, fails; the C
//                         library's own do not count
//   CALDER_FAIL_THREAD=N  the N-th thread does not start
//   CALDER_INTERRUPT=N    SIGINT comes before the N-th write to a descriptor above standard error
//   CALDER_MARK=FILE      this file is made when that happens

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

// What the C library's own functions do; its wrappers are what this file replaces.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* old, std::size_t size);
extern "C" void* __libc_memalign(std::size_t alignment, std::size_t size);

namespace {

std::atomic<long> allocations = 0;
std::atomic<long> mappings = 0;
std::atomic<long> threads = 0;
std::atomic<long> writes = 0;

/// Without allocating: the variable as a number, 0 when there is none.
long number_of(char const* variable) {
    char const* const text = std::getenv(variable);
    return text == nullptr ? 0 : std::strtol(text, nullptr, 10);
}

void make_mark() {
    if (char const* const mark = std::getenv("CALDER_MARK")) {
        close(open(mark, O_WRONLY | O_CREAT, 0666));
    }
}

bool fails() {
    static long const only = number_of("CALDER_FAIL");
    static long const first = number_of("CALDER_FAIL_ON");
    long const number = ++allocations;
    bool const is_meant = number == only || (first > 0 && number >= first);
    if (is_meant) {
        make_mark();
        errno = ENOMEM;
    }
    return is_meant;
}

bool mapping_fails() {
    static long const failing = number_of("CALDER_FAIL_MAP");
    bool const is_meant = ++mappings == failing;
    if (is_meant) {
        make_mark();
        errno = ENOMEM;
    }
    return is_meant;
}

} // namespace

#pragma GCC visibility push(default)

extern "C" void* malloc(std::size_t size) {
    return fails() ? nullptr : __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : __libc_calloc(count, size);
}

extern "C" void* realloc(void* old, std::size_t size) {
    return fails() ? nullptr : __libc_realloc(old, size);
}

extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

extern "C" int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    *result = fails() ? nullptr : __libc_memalign(alignment, size);
    return *result == nullptr ? ENOMEM : 0;
}

extern "C" void* mmap(void* address, std::size_t size, int protection, int flags, int descriptor,
                      off_t offset) {
    return mapping_fails() ? MAP_FAILED
                           : reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection,
                                                             flags, descriptor, offset));
}

extern "C" void* mremap(void* old, std::size_t old_size, std::size_t size, int flags,
                        ...) noexcept {
    std::va_list rest;
    va_start(rest, flags);
    void* const place = (flags & MREMAP_FIXED) != 0 ? va_arg(rest, void*) : nullptr;
    va_end(rest);
    return mapping_fails()
               ? MAP_FAILED
               : reinterpret_cast<void*>(syscall(SYS_mremap, old, old_size, size, flags, place));
}

extern "C" int pthread_create(pthread_t* thread, pthread_attr_t const* attributes,
                              void* (*work)(void*), void* argument) {
    static long const failing = number_of("CALDER_FAIL_THREAD");
    static auto const next =
        reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    if (++threads == failing) {
        make_mark();
        return EAGAIN;
    }
    return next(thread, attributes, work, argument);
}

extern "C" ssize_t write(int descriptor, void const* data, std::size_t size) {
    static long const interrupted = number_of("CALDER_INTERRUPT");
    if (descriptor > STDERR_FILENO && ++writes == interrupted) {
        make_mark();
        std::raise(SIGINT);
    }
    return syscall(SYS_write, descriptor, data, size);
}

#pragma GCC visibility pop
