#include "state_space/machine/machine_exploration.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/memory.h"

#include <algorithm>

namespace Calder::StateSpace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;

namespace {

Run refused(std::string reason) {
    Run run;
    run.refusal = std::move(reason);
    return run;
}

/// A quarter of the memory is for the leaves: one without end is to leave enough to do without
/// the machine.
CompilationOptions bounds_of_compilation(ExplorationOptions const& options) {
    CompilationOptions bounds;
    bounds.progress = options.progress;
    if (std::uint64_t const held = resident_bytes(); options.max_memory > held) {
        bounds.max_memory = held + (options.max_memory - held) / 4;
    } else {
        bounds.max_memory = options.max_memory;
    }
    return bounds;
}

} // namespace

MachineCompilation compile_for_run(ProcessPointer const& start, NamedProcessSource const& source,
                                   ExplorationOptions const& options) {
    MachineCompilation result;
    CompilationOptions const bounds = bounds_of_compilation(options);
    TermGraph graph =
        make_term_graph(start, source, {no_state, bounds.max_memory, bounds.progress});
    result.refused = graph.refused;
    if (graph.is_whole() && result.refused.empty() && !graph.vertices.front().is_construct) {
        result.is_one_leaf = true;
        return result;
    }
    Compilation compilation = compile(std::move(graph), source, bounds_of_compilation(options));
    result.machine = std::move(compilation.machine);
    // What the user ended has ended; what met a limit may go better another way.
    result.is_interrupted = compilation.outcome == Outcome::interrupted;
    if (!result.machine && !result.is_interrupted) {
        result.refusal =
            compilation.refusal.empty()
                ? "while it was compiled, " + std::string(describe(compilation.outcome))
                : std::move(compilation.refusal);
    }
    return result;
}

MachineExploration explore_by_machine(ProcessPointer const& start, NamedProcessSource const& source,
                                      RunOptions const& options) {
    MachineExploration result;
    MachineCompilation compilation = compile_for_run(start, source, options);
    result.refused = std::move(compilation.refused);
    if (compilation.is_one_leaf) {
        result.run = run_of(explore(start, source, options));
        return result;
    }
    if (!compilation.machine) {
        result.run = refused(std::move(compilation.refusal));
        result.run.outcome = compilation.is_interrupted ? Outcome::interrupted : Outcome::complete;
        return result;
    }
    result.machine = std::move(compilation.machine);
    try {
        result.tables = std::make_unique<ConfigurationTables>(*result.machine);
        result.run = run(*result.tables, options);
    } catch (MachineRefusal const& refusal) {
        result.run = refused(refusal.what());
    }
    if (!result.run.refusal.empty()) {
        result.run = refused(std::move(result.run.refusal));
        result.tables.reset();
        result.machine.reset();
    }
    return result;
}

std::vector<std::uint32_t> leaves_in(MachineExploration const& exploration, StateNumber state) {
    ConfigurationTables const& tables = *exploration.tables;
    return tables.leaves(tables.configuration_of(exploration.run.states->words(state)));
}

std::vector<std::uint32_t> slots_taking_part(MachineExploration const& exploration,
                                             StateNumber source, unsigned event,
                                             StateNumber target) {
    VisitedStates const& states = *exploration.run.states;
    Word const* const words = states.words(source);
    std::vector<Word> const wanted(states.words(target), states.words(target) + states.width());
    ConfigurationNumber const configuration = exploration.tables->configuration_of(words);
    auto const rule = exploration.tables->table(configuration).rule_between(words, event, wanted);
    std::vector<std::uint32_t> slots;
    if (rule) {
        FlatRules const& flat = exploration.tables->rules(configuration);
        for (Participant const& participant : flat.participants_of(flat.rules[*rule])) {
            slots.push_back(participant.slot);
        }
    }
    std::sort(slots.begin(), slots.end());
    return slots;
}

} // namespace Calder::StateSpace
