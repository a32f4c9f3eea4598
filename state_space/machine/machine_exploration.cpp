#include "state_space/machine/machine_exploration.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/run.h"
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

/// A leaf with more states than this may be one without end, of which the rest of the term allows only
/// a few: then the terms are tried before that is known of a million.
constexpr StateNumber small_leaf = 20'000;

/// A quarter of the memory is for the leaves: one without end is to leave enough to do without
/// the machine.
CompilationOptions bounds_of_compilation(ExplorationOptions const& options,
                                         StateNumber max_leaf_states) {
    CompilationOptions bounds;
    bounds.max_leaf_states = max_leaf_states;
    bounds.progress = options.progress;
    if (std::uint64_t const held = resident_bytes(); options.max_memory > held) {
        bounds.max_memory = held + (options.max_memory - held) / 4;
    } else {
        bounds.max_memory = options.max_memory;
    }
    return bounds;
}

struct Attempt {
    MachineCompilation compilation;
    bool met_leaf_limit = false;
};

Attempt try_to_compile(ProcessPointer const& start, NamedProcessSource const& source,
                       CompilationOptions const& bounds) {
    Attempt attempt;
    MachineCompilation& result = attempt.compilation;
    TermGraph graph =
        make_term_graph(start, source, {no_state, bounds.max_memory, bounds.progress});
    result.refused = graph.refused;
    if (graph.is_whole() && result.refused.empty() && !graph.vertices.front().is_construct) {
        result.is_one_leaf = true;
        return attempt;
    }
    Compilation compilation = compile(std::move(graph), source, bounds);
    attempt.met_leaf_limit = compilation.met_leaf_limit;
    result.machine = std::move(compilation.machine);
    // What the user ended has ended; what met a limit may go better another way.
    result.is_interrupted = compilation.outcome == Outcome::interrupted;
    if (!result.machine && !result.is_interrupted) {
        result.refusal =
            compilation.refusal.empty()
                ? "while it was compiled, " + std::string(describe(compilation.outcome))
                : std::move(compilation.refusal);
    }
    return attempt;
}

/// All that there is, or all that is wanted; nothing where there is more.
std::optional<Exploration> explore_few(ProcessPointer const& start,
                                       NamedProcessSource const& source,
                                       ExplorationOptions const& options) {
    ExplorationOptions few = options;
    few.max_states = std::min(options.max_states, small_leaf);
    Exploration explored = explore(start, source, few);
    bool const may_go_on =
        explored.outcome == Outcome::state_limit && few.max_states < options.max_states;
    return may_go_on ? std::nullopt : std::optional(std::move(explored));
}

} // namespace

MachineCompilation compile_for_run(ProcessPointer const& start, NamedProcessSource const& source,
                                   ExplorationOptions const& options) {
    Attempt attempt = try_to_compile(start, source, bounds_of_compilation(options, small_leaf));
    if (attempt.met_leaf_limit) {
        attempt.compilation.explored = explore_few(start, source, options);
        if (!attempt.compilation.explored) {
            attempt =
                try_to_compile(start, source, bounds_of_compilation(options, most_leaf_states));
        }
    }
    return std::move(attempt.compilation);
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
    if (compilation.explored) {
        result.run = run_of(std::move(*compilation.explored));
        result.why_by_terms = std::move(compilation.refusal);
        return result;
    }
    if (!compilation.machine) {
        result.run = refused(std::move(compilation.refusal));
        result.run.outcome = compilation.is_interrupted ? Outcome::interrupted : Outcome::complete;
        return result;
    }
    result.machine = std::move(compilation.machine);
    try {
        result.tables = std::make_shared<ConfigurationTables>(*result.machine);
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

std::vector<std::uint32_t> start_leaves(MachineExploration const& exploration) {
    return exploration.tables->start_leaves();
}

std::size_t configurations_met(MachineExploration const& exploration) {
    return exploration.tables->met();
}

std::vector<std::uint32_t> leaves_in(MachineExploration const& exploration, StateNumber state) {
    ConfigurationTables const& tables = *exploration.tables;
    return tables.leaves(tables.configuration_of(exploration.run.states->first_word(state)));
}

std::vector<std::uint32_t> slots_taking_part(MachineExploration const& exploration,
                                             StateNumber source, unsigned event,
                                             StateNumber target) {
    ReachedStates const& states = *exploration.run.states;
    ConfigurationNumber const configuration =
        exploration.tables->configuration_of(states.first_word(source));
    auto const rule = exploration.tables->table(configuration)
                          .rule_between(states.words(source).data(), event, states.words(target));
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
