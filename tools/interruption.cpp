#include "tools/interruption.h"

#include <csignal>

namespace Calder::Tools {

namespace {

volatile std::sig_atomic_t signal_came = 0;

constexpr int watched[] = {SIGINT, SIGTERM};

} // namespace

InterruptionWatch::InterruptionWatch() {
    signal_came = 0;
    struct sigaction action {};
    action.sa_handler = [](int) { signal_came = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int const signal : watched) {
        sigaction(signal, &action, nullptr);
    }
}

InterruptionWatch::~InterruptionWatch() {
    for (int const signal : watched) {
        std::signal(signal, SIG_DFL);
    }
}

bool InterruptionWatch::interrupted() const {
    return signal_came != 0;
}

} // namespace Calder::Tools
