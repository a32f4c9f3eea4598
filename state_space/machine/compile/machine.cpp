#include "state_space/machine/compile/machine.h"

#include <algorithm>

namespace Calder::StateSpace {

std::uint32_t place_of(unsigned argument,
                       HighLevelMachine::UnCompiledFormat const& format) noexcept {
    std::vector<unsigned> const& active = format.active_components;
    if (argument < active.size() && active[argument] == argument) {
        return argument; // all run, as mostly
    }
    auto const found = std::find(active.begin(), active.end(), argument);
    return found == active.end() ? none : static_cast<std::uint32_t>(found - active.begin());
}

} // namespace Calder::StateSpace
