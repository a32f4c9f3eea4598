#include "csp/exception_operator.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned exception_kind = 1;
constexpr std::uint64_t hash_seed = 0x3d7;

} // namespace

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
    } const step{events_, self(), arguments[1], visitor};
    return arguments[0]->visit_transitions(
        source, [&step](unsigned event, ProcessPointer const& successor) {
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
        if (events_.member(event)) {
            visitor({event}, event, arguments[1], true);
        } else {
            visitor({event}, event, same, false);
        }
    }
}

std::unique_ptr<Formats>
ExceptionOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(2);
    HighLevelMachine::UnCompiledFormat& before = formats->at(0);
    activate_first_components(before, 1);
    for (unsigned const event : alphabets[0]) {
        append_rule(before, event, events_.member(event) ? 1 : 0, {std::pair(0, event)});
    }
    make_identity_format(*formats, 1, alphabets[1], 1);
    return formats;
}

std::uint64_t ExceptionOperator::hash_code() const {
    return hash_from(hash_seed);
}

unsigned ExceptionOperator::operator_kind() const {
    return exception_kind;
}

RecursionType ExceptionOperator::recursion_type() const {
    return RecursionType::keeps_running;
}

bool ExceptionOperator::allows_recursion(unsigned index) const {
    return index == 1;
}

ArgumentState ExceptionOperator::process_state(unsigned index) const {
    return index == 0 ? ArgumentState::on : ArgumentState::off;
}

bool ExceptionOperator::discarded_by(unsigned) const {
    return false;
}

TurnedOnBy ExceptionOperator::turned_on_by(unsigned) const {
    return TurnedOnBy::visible_event;
}

CompilationLevel ExceptionOperator::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

bool ExceptionOperator::is_commutative() const {
    return false;
}

void ExceptionOperator::pretty_print(Printer& printer) const {
    print_bracketed_set(printer, "[|", events_, "|>");
}

void ExceptionOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Exception with event set:", events_);
}

void ExceptionOperator::pretty_print_operator_process(Printer& printer,
                                                      OperatorProcess const& process) const {
    print_infix(printer, process);
}

std::pair<unsigned, unsigned> ExceptionOperator::pretty_print_information() const {
    return {8, non_associative};
}

bool ExceptionOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == exception_kind;
}

} // namespace Calder::ProcessCompiler::CSP
