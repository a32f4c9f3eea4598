#include "process_compiler/process.h"

namespace Calder::ProcessCompiler {

Process::~Process() = default;

bool Process::needs_memoisation() const {
    return true;
}

void Process::visit_high_level_transitions(std::vector<BitSet> const&,
                                           HighLevelVisitor const&) const {}

ProcessPointer Process::self() const {
    // Terms are const while they are asked and shared as pointers to non-const ones.
    return ProcessPointer(const_cast<Process*>(this));
}

CompilableProcess::~CompilableProcess() = default;

} // namespace Calder::ProcessCompiler
