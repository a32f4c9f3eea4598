#pragma once

#include "state_space/exploration_options.h"
#include "state_space/export.h"
#include "state_space/machine/compile/machine.h"
#include "state_space/machine/compile/term_graph.h"

#include <string>

namespace Calder::StateSpace {

/// A machine, or why there is none.
struct Compilation {
    /// Null when there is none.
    std::unique_ptr<Machine const> machine;
    /// Why the term cannot be compiled, a part of a sentence; empty when the outcome says it.
    std::string refusal;
    /// Other than `complete` where a limit or a wish to stop ended it.
    Outcome outcome = Outcome::complete;
    /// The reason is a leaf with more states than it may have.
    bool met_leaf_limit = false;
};

/// Unless the options say another limit.
constexpr StateNumber most_leaf_states = 1'000'000;

/// The limits of a compilation, and who watches it.
struct CompilationOptions {
    /// A leaf with more states refuses the compilation: the network around it may reach only few of
    /// them.
    StateNumber max_leaf_states = most_leaf_states;
    /// @{
    /// As in ExplorationOptions.
    std::uint64_t max_memory = 0;
    std::function<bool(Progress const&)> progress = nullptr;
    /// @}
};

/// Compiles the start of the graph by what the constructs say of themselves; no construct is known
/// here. Refuses a graph in which recursion was refused or that is not whole, and events above
/// `most_event`. The demands on `source` are those of `explore`.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT Compilation
compile(TermGraph graph, ProcessCompiler::NamedProcessSource const& source,
        CompilationOptions const& options = {});

} // namespace Calder::StateSpace
