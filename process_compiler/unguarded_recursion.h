#pragma once

#include "process_compiler/named_process_source.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace Calder::ProcessCompiler {

/// A cycle of names, each of which runs the next one from its start; the last runs the first.
using NameCycle = std::vector<NamedProcessPointer>;

/// "recursion without a guard: P runs Q, Q runs P from the start", with the first of many steps.
CALDER_PROCESS_COMPILER_EXPORT std::string describe(NameCycle const& cycle);

/// Thrown where recursion without a guard comes to light as a process is made. The message says it
/// for people, as a part of a sentence.
class CALDER_PROCESS_COMPILER_EXPORT UnguardedRecursion : public std::runtime_error {
  public:
    /// The message is kept as given; `describe` makes that of a cycle.
    UnguardedRecursion(std::string const& message, NameCycle names);
    ~UnguardedRecursion() override;
    /// Exceptions are copied as they are thrown.
    UnguardedRecursion(UnguardedRecursion const&) = default;
    UnguardedRecursion& operator=(UnguardedRecursion const&) = delete;

    /// Each runs the next one from its start. A cycle, or a chain that grew too long.
    NameCycle const& names() const { return m_names; }

  private:
    NameCycle m_names;
};

/// The recursion without a guard: names that reach themselves through arguments that run from the
/// start, so that asking for their transitions would never end. `P = P [] a -> P` is one,
/// `P = a -> P` is not. Decided from the constructs' own answers (`process_state`), without asking
/// for a transition. At least one cycle is found for every set of names that reach each other so,
/// and at most one for each name; names that have no term yet lead nowhere: see GuardedMaker for
/// those that are made when they are asked for.
CALDER_PROCESS_COMPILER_EXPORT std::vector<NameCycle>
find_unguarded_recursion(NamedProcessSource const& source);

} // namespace Calder::ProcessCompiler
