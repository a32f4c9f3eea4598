#include "csp/relabelling_operator.h"

#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

RelabellingOperator::~RelabellingOperator() = default;

bool RelabellingOperator::visit_transitions(NamedProcessSource const& source,
                                            TransitionVisitor const& visitor,
                                            ProcessArray const& arguments) const {
    struct {
        RelabellingOperator const& relabelling;
        OperatorPointer const op;
        TransitionVisitor const& visitor;
    } const step{*this, self(), visitor};
    return arguments[0]->visit_transitions(
        source, [&step](unsigned event, ProcessPointer const& successor) {
            return step.visitor(step.relabelling.event_outside(event),
                                new OperatorProcess(step.op, successor));
        });
}

std::unique_ptr<Formats>
RelabellingOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(1);
    activate_first_components(formats->at(0), 1);
    for (unsigned const event : alphabets[0]) {
        append_rule(formats->at(0), event_outside(event), 0, {std::pair(0, event)});
    }
    return formats;
}

bool RelabellingOperator::is_commutative() const {
    return false;
}

void RelabellingOperator::pretty_print_operator_process(Printer& printer,
                                                        OperatorProcess const& process) const {
    print_postfix(printer, process);
}

std::pair<unsigned, unsigned> RelabellingOperator::pretty_print_information() const {
    return {10, left_associative};
}

bool RelabellingOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == operator_kind();
}

} // namespace Calder::ProcessCompiler::CSP
