#pragma once

#include "process_compiler/export.h"
#include "process_compiler/process.h"

#include <vector>

namespace Calder::ProcessCompiler {

/// Finds the named processes that terms run from their start, by the constructs' own answers
/// (`process_state`). Asks for no transition, and keeps its storage from one term to the next.
class CALDER_PROCESS_COMPILER_EXPORT NamesAtStart {
  public:
    /// Adds the numbers of those that `term` runs to `numbers`, in the order of their places;
    /// one that stands in several places may be added for each.
    ///
    /// Linear in the arguments that run, shared ones counted once, and no recursion: terms may be
    /// deep. A term that runs a few allocates nothing.
    void add_to(std::vector<unsigned>& numbers, Process const& term);

  private:
    std::vector<Process const*> m_waiting;
};

} // namespace Calder::ProcessCompiler
