#pragma once

#include "process_compiler/export.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>

namespace Calder::ProcessCompiler {

/// Thrown out of a recursion over terms that would need more of the stack than its watch allows.
class CALDER_PROCESS_COMPILER_EXPORT NestedTooDeeply : public std::runtime_error {
  public:
    NestedTooDeeply();
};

/// Watches what the thread that made it does with terms, for as long as it lives; of several the
/// one made last. Asking for transitions, hashing, comparing and printing recurse, and where
/// arguments are shared or an operator collects before it reports, they may do so for hours without
/// coming back to who asked. So each of their levels counts itself by `watch_recursion`.
///
/// Where a frame lies below `lowest_frame`, NestedTooDeeply is thrown. `look` is called after every
/// `steps_between_looks` levels; what it throws ends the recursion. The stack grows downwards.
class CALDER_PROCESS_COMPILER_EXPORT RecursionWatch {
  public:
    /// A look costs far more than a level does.
    static constexpr std::uint64_t steps_between_looks = 256;

    /// Takes over from the watch that the thread has; the destructor, in the same thread, gives it
    /// back.
    explicit RecursionWatch(std::uintptr_t lowest_frame, std::function<void()> look = nullptr);
    ~RecursionWatch();
    RecursionWatch(RecursionWatch const&) = delete;
    RecursionWatch& operator=(RecursionWatch const&) = delete;

    /// What a thread that nobody watches has; both tests then pass for ever.
    struct State {
        /// The lowest address that a frame may have.
        std::uintptr_t lowest_frame = 0;
        /// Levels until the next look.
        std::uint64_t steps_left = std::numeric_limits<std::uint64_t>::max();
        /// Who looks; null where nobody does.
        RecursionWatch const* watch = nullptr;
    };

    /// For `watch_recursion`: the frame is too low, or it is time to look.
    static void alarm(std::uintptr_t frame);

  private:
    std::function<void()> m_look;
    State m_outer;
};

/// Of this thread. Found without a call, as each level of each recursion asks for it.
extern CALDER_PROCESS_COMPILER_EXPORT constinit thread_local RecursionWatch::State recursion_state
    __attribute__((tls_model("initial-exec")));

/// One level of a recursion over terms, or one combination of successors. A few instructions.
inline void watch_recursion() {
    // The frame's own address, not that of a local variable: those may live on the heap in builds
    // with the address sanitizer.
    auto const frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    RecursionWatch::State& state = recursion_state;
    if (frame < state.lowest_frame || --state.steps_left == 0) [[unlikely]] {
        RecursionWatch::alarm(frame);
    }
}

} // namespace Calder::ProcessCompiler
