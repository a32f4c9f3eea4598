#pragma once

#include <cstdint>

namespace Calder::StateSpace {

/// Of a whole machine in one combination of formats; they are numbered as they are met.
using ConfigurationNumber = std::uint32_t;

/// The leaf in one slot of a configuration performs an event of its alphabet.
struct Participant {
    /// Member by member.
    bool operator==(Participant const&) const = default;

    /// Counted from left to right, in the configuration that the step leaves.
    std::uint32_t slot;
    /// What the leaf performs, not the machine.
    unsigned event;
};

} // namespace Calder::StateSpace
