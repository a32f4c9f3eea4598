#pragma once

#include <cstddef>

namespace Calder::StateSpace::Testing {

/// How often this program has allocated with new.
std::size_t allocation_count();

} // namespace Calder::StateSpace::Testing
