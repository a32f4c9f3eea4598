#pragma once

#include "core/bit_set.h"
#include "process_compiler/process.h"
#include "script/diagnostics.h"

#include <string>
#include <vector>

namespace Calder::Script {

/// What an `assert` asks.
enum class Question : unsigned char {
    /// `P [T= Q`: Q performs no trace that P does not.
    trace_refinement,
    /// `P [F= Q`: nor does Q, settled after a trace, refuse what P never refuses there.
    failures_refinement,
    /// `P [FD= Q`: nor does Q diverge where P does not; where P does, anything goes.
    failures_divergences_refinement,
    /// Something can happen in every state that is not a termination.
    deadlock_free,
    /// No silent steps without end.
    divergence_free,
    /// What is performed after a trace is never refused after it, and nothing diverges.
    deterministic,
    /// One trace is possible.
    has_trace,
    /// No event of a set is ever performed.
    never,
};

/// What is known of an `assert` without making a term.
struct AssertionHead {
    /// What it asks, before any `not`.
    Question question;
    /// An even number of `not` is none.
    bool is_negated = false;
    /// Of the `assert`; of a text of ReadOptions, of its start.
    Location location;
    /// As written, from behind `assert`; blanks and comments are one blank.
    std::string text;
    /// The processes in the same way. `abstract_name` is empty where there is one alone.
    std::string abstract_name{};
    /// Of the process asked about, also where there is one alone.
    std::string concrete_name{};
};

/// One `assert` of a script: what it asks, where, and in which words.
struct Assertion : AssertionHead {
    /// Of a refinement, otherwise null.
    ProcessCompiler::ProcessPointer abstract;
    /// The process asked about.
    ProcessCompiler::ProcessPointer concrete;
    /// Of has_trace: visible events, at the end perhaps tick.
    std::vector<unsigned> trace;
    /// Of never; tick may be among them.
    BitSet events;
};

} // namespace Calder::Script
