#pragma once

#include "process_compiler/named_process_source.h"
#include "state_space/labelled_transition_system.h"

#include <functional>
#include <string_view>

namespace Calder::StateSpace {

/// How an exploration ended.
enum class Outcome {
    /// Every state reachable from the start is explored.
    complete,
    state_limit,
    /// The limit on memory was reached, or there was none left to be had.
    memory_limit,
    /// A term was nested so deeply that the stack would not have sufficed.
    nesting_limit,
    /// The progress function said so.
    interrupted,
};

/// A part of a sentence for people, such as "the limit on states was reached".
std::string_view describe(Outcome outcome);

/// How far an exploration has got.
struct Progress {
    StateNumber states = 0;
    std::uint64_t transitions = 0;
    /// States whose transitions are all known.
    StateNumber explored = 0;
    /// States that are still to be explored.
    StateNumber frontier = 0;
    /// How many steps the state that is being explored is from the start.
    StateNumber depth = 0;
    /// The resident set of the process, in bytes.
    std::uint64_t memory = 0;
};

struct ExplorationOptions {
    /// How many states are kept at most. A process with exactly that many is explored completely.
    StateNumber max_states = no_state;
    /// For the resident set of the process, in bytes; 0 means no limit. The moments when an array
    /// is copied to grow are reckoned with.
    std::uint64_t max_memory = 0;
    /// Called about every 4096 transitions, more often where transitions take long. Answers whether
    /// to go on.
    std::function<bool(Progress const&)> progress = nullptr;
};

struct Exploration {
    LabelledTransitionSystem lts;
    Outcome outcome = Outcome::complete;
};

/// Explores what `start` can do, breadth-first: states are numbered in the order in which they are
/// first reached, each state's transitions in the order in which its term reports them. Equal terms
/// are one state.
///
/// When it ends early, the row of the state that it was at is dropped as a whole; states that only
/// this row had reached still count. So the system is consistent, and after the state limit it has
/// exactly `max_states` states.
///
/// There must be no recursion without a guard in `source`: asking for transitions would not end.
/// Exceptions other than std::bad_alloc pass through.
Exploration explore(ProcessCompiler::ProcessPointer const& start,
                    ProcessCompiler::NamedProcessSource const& source,
                    ExplorationOptions const& options = {});

} // namespace Calder::StateSpace
