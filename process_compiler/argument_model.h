#pragma once

namespace Calder::ProcessCompiler {

// How a construct answers about its arguments. The numbers are part of the contract.

/// What running does to the other arguments.
enum class RecursionType : unsigned {
    /// Choice-like: an event of one argument can end the others.
    ends_others = 1,
    /// None of the arguments runs at the start.
    starts_none = 2,
    /// A running argument keeps running.
    keeps_running = 3,
};

/// Whether an argument runs when the term starts.
enum class ArgumentState : unsigned { off = 0, on = 1 };

/// What switches on an argument that starts off.
enum class TurnedOnBy : unsigned {
    /// A visible event that the construct itself performs: a prefix's, an exception.
    visible_event = 1,
    /// A silent step of the construct: a choice's tau, a composition's tick made silent.
    silent_step = 2,
};

/// Which machine a term wants to be compiled to.
enum class CompilationLevel : unsigned {
    /// Explicit transitions.
    low = 0,
    /// Formats and rules.
    high = 1,
};

/// What a construct that follows the host's wish prefers.
constexpr CompilationLevel as_wished(bool high_wished) {
    return high_wished ? CompilationLevel::high : CompilationLevel::low;
}

/// @{
/// The second half of Process::pretty_print_information: on which side the same operator may
/// nest without parentheses.
constexpr unsigned left_associative = 0;
constexpr unsigned right_associative = 1;
constexpr unsigned non_associative = 2;
/// @}

} // namespace Calder::ProcessCompiler
