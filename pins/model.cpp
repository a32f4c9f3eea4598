#include "pins/model.h"

#include "state_space/machine/machine_exploration.h"
#include "state_space/machine/machine_refusal.h"

#include <fmt/core.h>

#include <string>

namespace Calder::Pins {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using StateSpace::Machine;
using StateSpace::MachineRefusal;

namespace {

/// What no machine can follow mostly has no end, and its terms grow.
constexpr StateSpace::StateNumber most_states_by_terms = 5'000;

/// Of one leaf, which does what was explored.
std::unique_ptr<Machine const>
machine_of_one_leaf(ProcessPointer const& start, StateSpace::LabelledTransitionSystem const& lts) {
    auto machine = std::make_unique<Machine>();
    machine->leaves.push_back(std::make_unique<StateSpace::Leaf>(start, lts));
    StateSpace::Part part{start};
    part.alphabet = machine->leaves.back()->alphabet();
    part.leaf = 0;
    machine->parts.push_back(std::move(part));
    return machine;
}

std::unique_ptr<Machine const> explored(ProcessPointer const& start,
                                        NamedProcessSource const& source,
                                        StateSpace::ExplorationOptions options,
                                        StateSpace::StateNumber most_states,
                                        std::string const& refusal) {
    options.max_states = std::min(options.max_states, most_states);
    StateSpace::Exploration const exploration = StateSpace::explore(start, source, options);
    if (exploration.outcome == StateSpace::Outcome::interrupted) {
        throw StateSpace::SearchEnded();
    }
    if (exploration.outcome != StateSpace::Outcome::complete) {
        std::string const reason =
            exploration.outcome == StateSpace::Outcome::state_limit
                ? fmt::format("term by term it has more than {} states", options.max_states)
                : fmt::format("term by term, {}", describe(exploration.outcome));
        throw MachineRefusal(refusal.empty() ? reason : refusal + "; " + reason);
    }
    return machine_of_one_leaf(start, exploration.lts);
}

std::unique_ptr<Machine const> make_machine(ProcessPointer const& start,
                                            NamedProcessSource const& source,
                                            StateSpace::ExplorationOptions const& options) {
    StateSpace::MachineCompilation compilation =
        StateSpace::compile_for_run(start, source, options);
    if (compilation.machine) {
        return std::move(compilation.machine);
    }
    if (compilation.is_interrupted) {
        throw StateSpace::SearchEnded();
    }
    if (compilation.explored && compilation.explored->outcome == StateSpace::Outcome::complete) {
        return machine_of_one_leaf(start, compilation.explored->lts);
    }
    return explored(start, source, options,
                    compilation.is_one_leaf ? StateSpace::most_leaf_states : most_states_by_terms,
                    compilation.refusal);
}

} // namespace

Model make_model(ProcessPointer const& start, NamedProcessSource const& source,
                 StateSpace::ExplorationOptions const& options) {
    Model model;
    model.machine = make_machine(start, source, options);
    model.tables = std::make_shared<StateSpace::ConfigurationTables>(*model.machine);
    StateSpace::SearchMonitor monitor(options, StateSpace::SearchMonitor::longest_for_machines);
    model.vectors = std::make_unique<VectorMachine const>(*model.tables, monitor);
    return model;
}

} // namespace Calder::Pins
