#pragma once

#include "core/bit_set.h"
#include "process_compiler/process.h"
#include "script/diagnostics.h"

#include <string>
#include <vector>

namespace Calder::Script {

enum class Question : unsigned char {
    trace_refinement,
    failures_refinement,
    failures_divergences_refinement,
    deadlock_free,
    divergence_free,
    deterministic,
    has_trace,
    never,
};

/// What is known of an `assert` without making a term.
struct AssertionHead {
    Question question;
    bool is_negated = false; // an even number of `not` is none
    Location location;       // of the `assert`; of a text of ReadOptions, of its start
    /// As written, from behind `assert`; blanks and comments are one blank.
    std::string text;
    /// The processes in the same way. `abstract_name` is empty where there is one alone.
    std::string abstract_name{};
    std::string concrete_name{};
};

/// One `assert` of a script: what it asks, where, and in which words.
struct Assertion : AssertionHead {
    ProcessCompiler::ProcessPointer abstract; // of a refinement, otherwise null
    ProcessCompiler::ProcessPointer concrete; // the process asked about
    std::vector<unsigned> trace; // of has_trace: visible events, at the end perhaps tick
    BitSet events;               // of never; tick may be among them
};

} // namespace Calder::Script
