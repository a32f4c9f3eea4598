#include "state_space/machine/compile/machine.h"

#include "process_compiler/event_numbers.h"

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

bool can_fire(HighLevelMachine::UnCompiledRule const& rule,
              HighLevelMachine::UnCompiledFormat const& format,
              std::vector<BitSet> const& alphabets) noexcept {
    return std::all_of(rule.component_events.begin(), rule.component_events.end(),
                       [&](HighLevelMachine::ComponentEvent const& participant) {
                           return participant.event == ProcessCompiler::no_event ||
                                  (alphabets[participant.component].member(participant.event) &&
                                   place_of(participant.component, format) != none);
                       });
}

} // namespace Calder::StateSpace
