#pragma once

#include "core/bit_set.h"
#include "core/fixed_array.h"
#include "process_compiler/process.h"

#include <vector>

namespace Calder::Script {

/// What a term can be apart from a name.
enum class Construct : unsigned char {
    stop,
    skip,
    run,
    chaos,
    replicated_parallel,
    renaming,
    prefix,
    event_set_prefix,
    sequential_composition,
    sliding_choice,
    interrupt,
    synchronising_interrupt,
    external_choice,
    synchronising_external_choice,
    internal_choice,
    generalised_parallel,
    alphabetised_parallel,
    linked_parallel,
    exception,
    interleaving,
    hiding,
    projection,
};

/// How an operator meets itself without parentheses.
enum class Association : unsigned char {
    none,
    left,
    right,
    nary, // a chain is one term
};

/// What a construct is built from, each in the order of the text.
struct Parts {
    OwningArray<ProcessCompiler::ProcessPointer> processes;
    /// Of a chain with one set, that set once.
    std::vector<BitSet> sets;
    /// The event of a prefix; of a renaming or links the pairs, one after the other.
    std::vector<unsigned> events;
};

struct ConstructEntry {
    Construct construct;
    char const* name;
    /// A lower level binds tighter.
    unsigned level;
    Association association;
    /// Makes the term.
    ProcessCompiler::ProcessPointer (*build)(Parts const& parts);
};

/// The one list of what is known of the constructs.
ConstructEntry const& entry_of(Construct construct);

} // namespace Calder::Script
