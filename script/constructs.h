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
    paired_parallel, // || (a, p) : {(S, P)(T, Q)} @ [a] p
    renaming,
    prefix, // of an event or a set of events
    guard,
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
    /// The event of a prefix, unless it has a set; of a renaming or links the pairs, one after the
    /// other.
    std::vector<unsigned> events;
};

struct ConstructEntry {
    Construct construct;
    char const* name;
    /// A lower level binds tighter.
    unsigned level;
    Association association;
    /// Whether it prefers to become a construct of a machine, rather than to be explored.
    bool prefers_machine;
    /// Makes the term; there are as many processes as the construct has.
    ProcessCompiler::ProcessPointer (*build)(Parts const& parts);
};

/// The commonest of terms without the arrays that parts come in.
ProcessCompiler::ProcessPointer make_prefix(unsigned event,
                                            ProcessCompiler::ProcessPointer const& process);

/// The one list of what is known of the constructs.
ConstructEntry const& entry_of(Construct construct);

} // namespace Calder::Script
