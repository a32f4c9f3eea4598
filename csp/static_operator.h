#pragma once

#include "process_compiler/operator_process.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

/// How the operators answer whose arguments all run from the start and go on running: the parallel
/// ones, hiding, projection and renaming. `Base` is Operator or one that is made from it.
template <typename Base> class StaticOperator : public Base {
  public:
    RecursionType recursion_type() const override { return RecursionType::keeps_running; }
    bool allows_recursion(unsigned) const override { return false; }
    ArgumentState process_state(unsigned) const override { return ArgumentState::on; }
    bool discarded_by(unsigned) const override { return false; }
    /// Aborts: no argument is ever off.
    TurnedOnBy turned_on_by(unsigned) const override { std::abort(); }
    CompilationLevel preferred_compilation_level(bool) const override {
        return CompilationLevel::high;
    }

  protected:
    using Base::Base;
};

} // namespace Calder::ProcessCompiler::CSP
