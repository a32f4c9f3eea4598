#include "csp/synchronising_interrupt_operator.h"

#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned synchronising_interrupt_kind = 7;
constexpr std::uint64_t hash_seed = 0x152b;

} // namespace

SynchronisingInterruptOperator::SynchronisingInterruptOperator(BitSet const& synchronised_events)
    : EventSetOperator(synchronised_events) {}

SynchronisingInterruptOperator::~SynchronisingInterruptOperator() = default;

bool SynchronisingInterruptOperator::visit_transitions(NamedProcessSource const& source,
                                                       TransitionVisitor const& visitor,
                                                       ProcessArray const& arguments) const {
    SynchronisedVisit visit(self(), arguments, visitor);
    TransitionVisitor const argument_visitor = [this, &visit](unsigned event,
                                                              ProcessPointer const& successor) {
        if (events_.member(event)) {
            return visit.keep(event, successor);
        }
        if (event == tick) {
            return visit.visitor(tick, shared_stop);
        }
        bool const takes_over = visit.moving == 1 && event != tau;
        return takes_over ? visit.visitor(event, successor) : visit.move(event, successor);
    };
    if (!arguments[0]->visit_transitions(source, argument_visitor)) {
        return false;
    }
    visit.moving = 1;
    arguments[1]->visit_transitions(source, argument_visitor); // whatever it answers
    sort_sync_vectors(visit.vectors);
    return cart_product_synchronised_events(events_, visit.vectors, arguments, visitor, visit.op);
}

std::unique_ptr<Formats>
SynchronisingInterruptOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(alphabets[0].member(tick) ? 3 : 2);
    HighLevelMachine::UnCompiledFormat& both = formats->at(0);
    activate_first_components(both, 2);
    for (unsigned const event : alphabets[0]) {
        unsigned const other = events_.member(event) ? event : no_event;
        append_rule(both, event, event == tick ? 2 : 0, {std::pair(0, event), std::pair(1, other)});
    }
    for (unsigned const event : alphabets[1]) {
        if (!events_.member(event)) {
            append_rule(both, event, event == tau ? 0 : 1,
                        {std::pair(0, no_event), std::pair(1, event)});
        }
    }
    make_identity_format(*formats, 1, alphabets[1], 1);
    make_stop_format(*formats, 2); // also when no tick leads there
    return formats;
}

std::uint64_t SynchronisingInterruptOperator::hash_code() const {
    return hash_from(hash_seed);
}

unsigned SynchronisingInterruptOperator::operator_kind() const {
    return synchronising_interrupt_kind;
}

RecursionType SynchronisingInterruptOperator::recursion_type() const {
    return RecursionType::ends_others;
}

bool SynchronisingInterruptOperator::allows_recursion(unsigned index) const {
    return index == 1;
}

ArgumentState SynchronisingInterruptOperator::process_state(unsigned) const {
    return ArgumentState::on;
}

bool SynchronisingInterruptOperator::discarded_by(unsigned index) const {
    return index != 0;
}

TurnedOnBy SynchronisingInterruptOperator::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel SynchronisingInterruptOperator::preferred_compilation_level(bool) const {
    return CompilationLevel::high;
}

bool SynchronisingInterruptOperator::is_commutative() const {
    return false;
}

void SynchronisingInterruptOperator::pretty_print(Printer& printer) const {
    print_bracketed_set(printer, "/+", events_, "+\\");
}

void SynchronisingInterruptOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Synchronising Interrupt synchronising on:", events_);
}

void SynchronisingInterruptOperator::pretty_print_operator_process(
    Printer& printer, OperatorProcess const& process) const {
    print_infix(printer, process);
}

std::pair<unsigned, unsigned> SynchronisingInterruptOperator::pretty_print_information() const {
    return {5, left_associative};
}

bool SynchronisingInterruptOperator::pretty_print_is_same_operator(Operator const& other) const {
    return *this == other;
}

} // namespace Calder::ProcessCompiler::CSP
