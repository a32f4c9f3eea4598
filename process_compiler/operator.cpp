#include "process_compiler/operator.h"

namespace Calder::ProcessCompiler {

Operator::Operator() = default;

Operator::~Operator() = default;

void Operator::visit_high_level_transitions(std::vector<BitSet> const&, HighLevelVisitor const&,
                                            ProcessArray const&) const {}

OperatorPointer Operator::self() const {
    // Operators are const while they are asked and shared as pointers to non-const ones.
    return OperatorPointer(const_cast<Operator*>(this));
}

} // namespace Calder::ProcessCompiler
