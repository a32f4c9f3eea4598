#pragma once

#include <cstdint>

namespace Calder::Refinement {

/// What a question remembers of the trace so far: 0, 1, … in the order of first use. The number of a
/// node of the abstract side's normal form, or how much of a given trace was done.
using NodeNumber = std::uint32_t;

/// Not a node: the event may not come.
constexpr NodeNumber forbidden = 0xFFFFFFFF;
/// Not a node: the event may come, and nothing behind it matters.
constexpr NodeNumber nothing_matters = 0xFFFFFFFE;

/// Not a node: nobody has asked yet.
constexpr NodeNumber not_known = 0xFFFFFFFD;

[[nodiscard]] constexpr bool is_node(NodeNumber number) noexcept {
    return number < not_known;
}

} // namespace Calder::Refinement
