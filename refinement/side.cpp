#include "refinement/side.h"

#include "refinement/machine_side.h"
#include "refinement/term_side.h"
#include "state_space/machine/machine_exploration.h"
#include "state_space/machine/machine_refusal.h"

namespace Calder::Refinement {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using StateSpace::ExplorationOptions;
using StateSpace::Outcome;

namespace {

/// Null, and the reason told, where there is none.
std::unique_ptr<Side> machine_side(ProcessPointer const& term, NamedProcessSource const& source,
                                   ExplorationOptions const& options, NoMachine& no_machine,
                                   SearchMonitor& monitor, StateSpace::Cut const& cut) {
    StateSpace::MachineCompilation made = StateSpace::compile_for_run(term, source, options);
    no_machine = {std::move(made.refusal), std::move(made.refused)};
    if (made.is_interrupted || (made.explored && made.explored->outcome == Outcome::interrupted)) {
        monitor.stop(Outcome::interrupted);
        throw StateSpace::SearchEnded();
    }
    if (!made.machine) {
        return nullptr;
    }
    try {
        auto tables = std::make_shared<StateSpace::ConfigurationTables>(*made.machine);
        return std::make_unique<MachineSide>(
            RunningMachine{std::move(made.machine), std::move(tables)}, monitor,
            cut.most_plain_words);
    } catch (StateSpace::MachineRefusal const& refusal) {
        no_machine.reason = refusal.what();
        return nullptr;
    }
}

} // namespace

MadeSide make_side(ProcessPointer const& term, NamedProcessSource const& source,
                   ExplorationOptions const& options, bool by_machine, SearchMonitor& monitor,
                   StateSpace::Cut const& cut) {
    MadeSide made;
    if (by_machine) {
        made.side = machine_side(term, source, options, made.no_machine, monitor, cut);
    }
    if (!made.side) {
        made.side = std::make_unique<TermSide>(term, source, monitor);
    }
    return made;
}

} // namespace Calder::Refinement
