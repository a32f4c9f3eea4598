#include "tools/out_of_memory.h"

#include "tools/command_error.h"
#include "tools/last_words.h"

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>
#include <unistd.h>

namespace Calder::Tools {

namespace {

std::atomic<unsigned> failures = 0;

void note_failure() {
    ++failures;
    throw std::bad_alloc();
}

/// Also where there was no memory even for the exception.
bool ran_out_of_memory() {
    std::exception_ptr const current = std::current_exception();
    if (!current) {
        return failures > 0;
    }
    try {
        std::rethrow_exception(current);
    } catch (std::bad_alloc const&) {
        return true;
    } catch (...) {
        return false;
    }
}

[[noreturn]] void tell_and_end() {
    if (!ran_out_of_memory()) {
        std::abort(); // a fault of ours, for a core file
    }
    tell_out_of_memory();
    _exit(exit_stopped_early);
}

void install() {
    std::set_terminate(tell_and_end);
    std::set_new_handler(note_failure);
}

/// The list of functions that run before those of the shared libraries, whose static objects
/// allocate too.
[[gnu::section(".preinit_array"), gnu::used]] void (*const install_first)() = install;

} // namespace

void tell_out_of_memory() noexcept {
    tell_last_words("out of memory");
}

unsigned failed_allocations() {
    return failures;
}

} // namespace Calder::Tools
