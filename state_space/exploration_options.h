#pragma once

#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"

#include <functional>
#include <string_view>

namespace Calder::StateSpace {

/// How a search ended.
enum class Outcome {
    /// Every state reachable from the start is explored.
    complete,
    /// There are more states than were to be kept.
    state_limit,
    /// The limit on memory was reached, or there was none left to be had.
    memory_limit,
    /// A term was nested so deeply that the stack would not have sufficed.
    nesting_limit,
    /// The progress function said so.
    interrupted,
};

/// A part of a sentence for people, such as "the limit on states was reached".
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::string_view describe(Outcome outcome);

/// How far a search has got.
struct Progress {
    /// That were reached.
    StateNumber states = 0;
    /// Of the explored states.
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

/// The limits of a search, and who watches it.
struct ExplorationOptions {
    /// How many states are kept at most. A process with exactly that many is explored completely.
    StateNumber max_states = no_state;
    /// For the resident set of the process, in bytes; 0 means no limit. The moments when an array
    /// is copied to grow are reckoned with.
    std::uint64_t max_memory = 0;
    /// Called about every 4096 transitions of terms, or 65536 of a machine (four times as many for each of
    /// several threads that run it), and more often where they take long, also before the first of them;
    /// while a machine is made, as often. By the thread that called. Answers whether to go on.
    std::function<bool(Progress const&)> progress = nullptr;
};

} // namespace Calder::StateSpace
