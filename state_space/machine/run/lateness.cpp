#include "state_space/machine/run/lateness.h"

#ifdef CALDER_LATE_THREADS

#include <chrono>
#include <functional>
#include <random>
#include <thread>

namespace Calder::StateSpace {

void may_be_late() noexcept {
    thread_local std::minstd_rand random(static_cast<std::minstd_rand::result_type>(
        std::hash<std::thread::id>()(std::this_thread::get_id())));
    auto const chance = random() % 256;
    if (chance == 0) {
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 100));
    } else if (chance < 32) {
        std::this_thread::yield();
    }
}

} // namespace Calder::StateSpace

#endif
