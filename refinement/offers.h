#pragma once

#include "process_compiler/event_numbers.h"

#include <algorithm>
#include <optional>
#include <span>

namespace Calder::Refinement {

/// Of what a state can perform, ascending: the events of which it takes one when it settles, all
/// others being refused. A state that can tick may refuse everything else, stable or not; one that can
/// go on silently otherwise never settles (Roscoe, The Theory and Practice of Concurrency, 1997,
/// chapter 8).
[[nodiscard]] inline std::optional<std::span<unsigned const>>
acceptance_of(std::span<unsigned const> events) noexcept {
    // Tau and tick are the lowest numbers: they stand first.
    std::size_t const silent = !events.empty() && events[0] == ProcessCompiler::tau ? 1 : 0;
    if (events.size() > silent && events[silent] == ProcessCompiler::tick) {
        return events.subspan(silent, 1);
    }
    return silent == 1 ? std::nullopt : std::optional(events);
}

} // namespace Calder::Refinement
