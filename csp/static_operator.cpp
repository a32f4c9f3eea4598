#include "csp/static_operator.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

StaticOperator::StaticOperator() = default;

StaticOperator::~StaticOperator() = default;

RecursionType StaticOperator::recursion_type() const {
    return RecursionType::keeps_running;
}

bool StaticOperator::allows_recursion(unsigned) const {
    return false;
}

ArgumentState StaticOperator::process_state(unsigned) const {
    return ArgumentState::on;
}

bool StaticOperator::discarded_by(unsigned) const {
    return false;
}

TurnedOnBy StaticOperator::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel StaticOperator::preferred_compilation_level(bool) const {
    return CompilationLevel::high;
}

} // namespace Calder::ProcessCompiler::CSP
