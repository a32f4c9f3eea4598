#pragma once

#include "state_space/export.h"

namespace Calder::StateSpace {

/// Stands at the places where it matters which thread comes first. In a build with CALDER_LATE_THREADS the
/// thread is late there at random, from not at all to a tenth of a millisecond; in all others this is nothing.
#ifdef CALDER_LATE_THREADS
CALDER_STATE_SPACE_EXPORT void may_be_late() noexcept;
#else
inline void may_be_late() noexcept {}
#endif

} // namespace Calder::StateSpace
