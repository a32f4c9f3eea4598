#pragma once

#include "process_compiler/recursion_watch.h"
#include "state_space/search_monitor.h"
#include "state_space/stack_guard.h"

#include <chrono>

namespace Calder::Fuzz {

/// Thrown out of reading: the values of a script may take any time to compute.
struct TooMuchWork {};

/// How much is done with one input. Scripts that take hours are no faults, so whatever can be ended
/// early is, after so few states or so little time; what goes on in spite of that is a fault, and the
/// fuzzer's own limit on time finds it.
class Bounds {
  public:
    /// Enough for two parallel processes to go round, few enough for hundreds of inputs a second.
    static constexpr StateSpace::StateNumber most_states = 300;
    static constexpr std::uint64_t most_transitions = 20'000;
    /// Of a printed term: some need terabytes.
    static constexpr std::int32_t most_characters = 20'000;
    static constexpr std::size_t most_assertions = 8;

    bool are_met() const { return Clock::now() > m_end; }

    /// For a search. The bounds must outlive the options.
    template <typename Options> Options options() const {
        Options result;
        result.max_states = most_states;
        result.progress = [this](StateSpace::Progress const& progress) {
            return progress.transitions < most_transitions && !are_met();
        };
        return result;
    }

  private:
    using Clock = std::chrono::steady_clock;

    void look() const {
        if (are_met()) {
            throw TooMuchWork();
        }
    }

    Clock::time_point m_end = Clock::now() + std::chrono::milliseconds(500);
    ProcessCompiler::RecursionWatch m_watch{StateSpace::StackGuard().lowest(), [this] { look(); }};
};

} // namespace Calder::Fuzz
