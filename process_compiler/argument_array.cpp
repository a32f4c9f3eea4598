#include "process_compiler/argument_array.h"

#include "core/hash_combine.h"
#include "process_compiler/shared_comparison.h"

#include <algorithm>

namespace Calder::ProcessCompiler {

namespace {

/// False, and nothing is mixed in, when there is no code.
bool mix_kept(std::uint64_t& hash, ProcessPointer const& argument) {
    std::uint64_t const code = argument ? argument->kept_hash() : 0;
    if (code == 0) {
        return false;
    }
    hash = hash_combine(hash, code);
    return true;
}

/// Mostly all arguments but one are the same objects, and nothing is to be watched up to there.
template <typename Equal>
bool equal_arrays(ProcessArray const& left, ProcessArray const& right, Equal const& equal) {
    if (left.size() != right.size()) {
        return false;
    }
    auto const [mine, theirs] = std::mismatch(left.begin(), left.end(), right.begin());
    return mine == left.end() ||
           equal_at_once(&left, &right, [mine = mine, theirs = theirs, &left, &equal] {
               return std::equal(mine, left.end(), theirs, equal);
           });
}

} // namespace

std::uint64_t hash_arguments(ProcessArray const& arguments) {
    watch_recursion();
    return hash_sequence(arguments, hash_of);
}

SuccessorHash::SuccessorHash(ProcessArray const& arguments)
    : m_arguments(&arguments), m_hash(hash_of_length(arguments.size())) {}

std::optional<std::uint64_t> SuccessorHash::with(std::size_t index,
                                                 ProcessPointer const& replacement) {
    if (index < m_mixed) {
        *this = SuccessorHash(*m_arguments);
    }
    ProcessPointer const* const arguments = m_arguments->begin();
    for (; m_mixed < index; ++m_mixed) {
        if (!mix_kept(m_hash, arguments[m_mixed])) {
            return std::nullopt;
        }
    }
    std::uint64_t hash = m_hash;
    bool all_kept = mix_kept(hash, replacement);
    for (std::size_t i = index + 1; all_kept && i < m_arguments->size(); ++i) {
        all_kept = mix_kept(hash, arguments[i]);
    }
    return all_kept ? std::optional(hash) : std::nullopt;
}

bool arguments_equal(ProcessArray const& left, ProcessArray const& right) {
    return equal_arrays(left, right, [](ProcessPointer const& mine, ProcessPointer const& theirs) {
        return mine == theirs || *mine == *theirs;
    });
}

bool arguments_differ(ProcessArray const& left, ProcessArray const& right) {
    return !equal_arrays(left, right, [](ProcessPointer const& mine, ProcessPointer const& theirs) {
        return mine == theirs || !(*mine != *theirs);
    });
}

void clone_arguments(ProcessArray const& arguments, ProcessArray& clones) {
    watch_recursion();
    std::transform(arguments.begin(), arguments.end(), clones.begin(),
                   [](ProcessPointer const& argument) { return argument->clone(true); });
}

void replace_arguments(ProcessArray& own, ProcessArray const& given) {
    std::copy_n(given.begin(), own.size(), own.begin());
}

} // namespace Calder::ProcessCompiler
