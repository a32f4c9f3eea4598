#include "refinement/machine_steps.h"

#include "process_compiler/event_numbers.h"
#include "refinement/inner_events.h"
#include "state_space/machine/run/configuration_tables.h"

#include <algorithm>

namespace Calder::Refinement {

using ProcessCompiler::tau;
using StateSpace::ConfigurationNumber;
using StateSpace::ConfigurationTables;
using StateSpace::FlatRules;
using StateSpace::Word;

RunState described_state(RunningMachine const& machine, StateNumber number, Word const* state) {
    ConfigurationTables const& tables = *machine.tables;
    RunState described{number};
    described.configuration = tables.configuration_of(state);
    auto const leaves = tables.leaves(described.configuration);
    auto const& slots = tables.layout_of(state).slots();
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        described.slots.push_back({leaves[slot], slots[slot].read(state)});
    }
    return described;
}

EvidenceStep described_step(RunningMachine const& machine, StateNumber source,
                            Word const* source_words, unsigned event, StateNumber target,
                            Word const* target_words) {
    EvidenceStep step{event, described_state(machine, source, source_words), target};
    ConfigurationTables const& tables = *machine.tables;
    ConfigurationNumber const configuration = step.source.configuration;
    auto const rule =
        tables.table(configuration)
            .rule_between(source_words, event, {target_words, target_words + tables.width()});
    if (rule) {
        FlatRules const& flat = tables.rules(configuration);
        auto const participants = flat.participants_of(flat.rules[*rule]);
        step.participants.assign(participants.begin(), participants.end());
        std::sort(step.participants.begin(), step.participants.end(),
                  [](auto const& left, auto const& right) { return left.slot < right.slot; });
        if (event == tau) {
            step.inner_events =
                inner_events(tables.configurations(), configuration, step.participants);
        }
    }
    return step;
}

} // namespace Calder::Refinement
