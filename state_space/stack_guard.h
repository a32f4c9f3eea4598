#pragma once

#include "state_space/export.h"

#include <cstdint>

namespace Calder::StateSpace {

/// Tells when the stack of a thread runs low, so that a recursion over terms can end in time. It
/// watches the thread that made it.
///
/// Low means that less than half of the stack is left, and never less than 256 KiB: whoever finds
/// it low may still go once more over the term whose depth used up the rest, to hash it or to
/// compare it. Of a stack larger than 1 GiB, or without limit, only the first GiB is counted on.
class CALDER_STATE_SPACE_EXPORT StackGuard {
  public:
    StackGuard();

    /// About the frame that asks. Costs one comparison.
    [[nodiscard]] bool is_low() const noexcept {
        // The frame's own address, not that of a local variable: those may live on the heap in
        // builds with the address sanitizer.
        return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) < m_lowest_wanted;
    }

    /// Below which it is low.
    [[nodiscard]] std::uintptr_t lowest() const noexcept { return m_lowest_wanted; }

  private:
    std::uintptr_t m_lowest_wanted;
};

} // namespace Calder::StateSpace
