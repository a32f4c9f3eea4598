#include "tools/interruption.h"

#include "tools/command_error.h"
#include "tools/last_words.h"

#include <atomic>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <unistd.h>

namespace Calder::Tools {

namespace {

constexpr int watched[] = {SIGINT, SIGTERM, SIGHUP};

/// Who sends a signal to the command and to its process group sends it twice at once, and two
/// threads may each get one. Only what comes later than this, in nanoseconds, is a second wish.
constexpr std::int64_t same_wish = 200'000'000;

/// When the first signal came; 0 before.
std::atomic<std::int64_t> first_signal = 0;
static_assert(std::atomic<std::int64_t>::is_always_lock_free); // else no signal handler may use it

std::int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

void note_signal(int signal) {
    std::int64_t first = 0;
    if (!first_signal.compare_exchange_strong(first, now()) && now() - first > same_wish) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
}

/// Calls only what may be called while anything else is going on.
void end_at_once(int) {
    tell_last_words("interrupted");
    _exit(exit_stopped_early);
}

void handle_signals(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (int const signal : watched) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (signal != SIGHUP || before.sa_handler != SIG_IGN) { // nohup ignores that one
            sigaction(signal, &action, nullptr);
        }
    }
}

} // namespace

void end_when_interrupted() {
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error of writing, which is told
    handle_signals(end_at_once);
}

InterruptionWatch::InterruptionWatch() {
    first_signal = 0;
    handle_signals(note_signal);
}

InterruptionWatch::~InterruptionWatch() {
    end_when_interrupted();
}

bool InterruptionWatch::interrupted() const {
    return first_signal != 0;
}

} // namespace Calder::Tools
