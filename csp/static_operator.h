#pragma once

#include "csp/export.h"
#include "process_compiler/operator_process.h"

namespace Calder::ProcessCompiler::CSP {

/// How the operators answer whose arguments all run from the start and go on running: the parallel
/// ones, hiding, projection and renaming.
class CALDER_CSP_EXPORT StaticOperator : public Operator {
  public:
    ~StaticOperator() override;

    RecursionType recursion_type() const override;
    bool allows_recursion(unsigned index) const override;
    ArgumentState process_state(unsigned index) const override;
    bool discarded_by(unsigned index) const override;
    /// Aborts: no argument is ever off.
    TurnedOnBy turned_on_by(unsigned index) const override;
    CompilationLevel preferred_compilation_level(bool high_wished) const override;

  protected:
    StaticOperator();
};

} // namespace Calder::ProcessCompiler::CSP
