#include "csp/exception_operator.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

ExceptionOperator::ExceptionOperator(BitSet const& exception_events)
    : EventSetOperator(exception_events) {}

ExceptionOperator::ExceptionOperator(Session& session, EventSet const& exception_events)
    : EventSetOperator(session, exception_events) {}

ExceptionOperator::~ExceptionOperator() = default;

bool ExceptionOperator::visit_transitions(NamedProcessSource const& source,
                                          TransitionVisitor const& visitor,
                                          ProcessArray const& arguments) const {
    struct {
        BitSet const& exceptions;
        OperatorPointer const op;
        ProcessPointer const& handler;
        TransitionVisitor const& visitor;
    } const step{m_events, self(), arguments[1], visitor};
    return visit_argument(
        arguments[0], source, [&step](unsigned event, ProcessPointer const& successor) {
            if (event == tick) {
                return step.visitor(tick, shared_stop);
            }
            if (step.exceptions.member(event)) {
                return step.visitor(event, step.handler);
            }
            return step.visitor(event, new OperatorProcess(step.op, successor, step.handler));
        });
}

void ExceptionOperator::visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                                     HighLevelVisitor const& visitor,
                                                     ProcessArray const& arguments) const {
    ProcessPointer const same(new OperatorProcess(self(), arguments));
    for (unsigned const event : alphabets[0]) {
        if (m_events.member(event)) {
            visitor({event}, event, arguments[1], true);
        } else {
            visitor({event}, event, same, false);
        }
    }
}

std::unique_ptr<Formats>
ExceptionOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(2);
    activate_first_components(formats->at(0), 1);
    append_argument_rules(formats->at(0), 0, alphabets[0],
                          [this](unsigned event) { return m_events.member(event) ? 1U : 0U; });
    make_identity_format(*formats, 1, alphabets[1], 1);
    return formats;
}

void ExceptionOperator::pretty_print_operator_process(Printer& printer,
                                                      OperatorProcess const& process) const {
    print_infix_in_pieces(printer, process);
}

} // namespace Calder::ProcessCompiler::CSP
