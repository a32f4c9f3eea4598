#pragma once

#include <cstdint>

namespace Calder::StateSpace {

/// Of a whole machine in one combination of formats; they are numbered as they are met.
using ConfigurationNumber = std::uint32_t;
/// The leaf in one slot of a configuration performs an event of its alphabet.
struct Participant {
    bool operator==(Participant const&) const = default;

    std::uint32_t slot;
    unsigned event;
};

} // namespace Calder::StateSpace
