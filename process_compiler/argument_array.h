#pragma once

#include "process_compiler/export.h"
#include "process_compiler/process.h"

#include <optional>

namespace Calder::ProcessCompiler {

// What the terms with any number of arguments share.

/// The count and the arguments in order, mixed; a null argument counts as 0.
CALDER_PROCESS_COMPILER_EXPORT std::uint64_t hash_arguments(ProcessArray const& arguments);

/// The codes of arrays that differ from one in a single argument each, as the successors of a term
/// do. What stands before that argument is mixed once for all of them, so it pays to ask for
/// ascending indices.
///
/// No argument is asked for its code, only for what it keeps: so nothing recurses, and what nobody
/// wants to know is not computed.
class CALDER_PROCESS_COMPILER_EXPORT SuccessorHash {
  public:
    /// Of the arguments of the term, which must outlive it.
    explicit SuccessorHash(ProcessArray const& arguments);

    /// What `hash_arguments` answers of a copy with the one at `index` replaced; nothing where one of
    /// its arguments does not keep its code, or is null.
    [[nodiscard]] std::optional<std::uint64_t> with(std::size_t index,
                                                    ProcessPointer const& replacement);

  private:
    ProcessArray const* m_arguments;
    std::size_t m_mixed = 0; // so many arguments are mixed into `m_hash`
    std::uint64_t m_hash;
};

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
