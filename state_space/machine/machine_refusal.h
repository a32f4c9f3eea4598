#pragma once

#include "state_space/export.h"
#include "state_space/stack_guard.h"

#include <stdexcept>

namespace Calder::StateSpace {

/// A term that no machine can follow, or a machine that cannot be run. The message says why, as a
/// part of a sentence.
class CALDER_STATE_SPACE_EXPORT MachineRefusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// For recursions over a machine.
inline void refuse_if_low(StackGuard const& stack) {
    if (stack.is_low()) {
        throw MachineRefusal("it nests too deeply for the stack");
    }
}

} // namespace Calder::StateSpace
