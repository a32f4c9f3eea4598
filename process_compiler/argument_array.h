#pragma once

#include "process_compiler/export.h"
#include "process_compiler/process.h"

namespace Calder::ProcessCompiler {

// What the terms with any number of arguments share.

/// The count and the arguments in order, mixed; a null argument counts as 0.
CALDER_PROCESS_COMPILER_EXPORT std::uint64_t hash_arguments(ProcessArray const& arguments);

/// Same count and pairwise equal in order, by the arguments' operator==; the same object is equal
/// to itself without being asked.
CALDER_PROCESS_COMPILER_EXPORT bool arguments_equal(ProcessArray const& left,
                                                    ProcessArray const& right);

/// The opposite answer, by the arguments' operator!=.
CALDER_PROCESS_COMPILER_EXPORT bool arguments_differ(ProcessArray const& left,
                                                     ProcessArray const& right);

/// Fills `clones`, which has the same length, with the arguments' own deep clones, in order.
CALDER_PROCESS_COMPILER_EXPORT void clone_arguments(ProcessArray const& arguments,
                                                    ProcessArray& clones);

/// Replaces all of `own` by the first elements of `given`, each new one retained before the old one
/// is released.
CALDER_PROCESS_COMPILER_EXPORT void replace_arguments(ProcessArray& own, ProcessArray const& given);

} // namespace Calder::ProcessCompiler
