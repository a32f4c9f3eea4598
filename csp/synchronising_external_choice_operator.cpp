#include "csp/synchronising_external_choice_operator.h"

#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned synchronising_choice_kind = 6;
constexpr std::uint64_t hash_seed = 0x132d;

} // namespace

SynchronisingExternalChoiceOperator::SynchronisingExternalChoiceOperator(
    BitSet const& synchronised_events)
    : EventSetOperator(synchronised_events) {}

SynchronisingExternalChoiceOperator::~SynchronisingExternalChoiceOperator() = default;

bool SynchronisingExternalChoiceOperator::visit_transitions(NamedProcessSource const& source,
                                                            TransitionVisitor const& visitor,
                                                            ProcessArray const& arguments) const {
    if (arguments.empty()) {
        return true;
    }
    SynchronisedVisit visit(self(), arguments, visitor);
    TransitionVisitor const argument_visitor = [this, &visit](unsigned event,
                                                              ProcessPointer const& successor) {
        if (events_.member(event)) {
            return visit.keep(event, successor);
        }
        if (event == tick) {
            return visit.visitor(tick, shared_stop);
        }
        if (event == tau) {
            return visit.move(tau, successor);
        }
        return visit.visitor(event, successor);
    };
    for (; visit.moving < arguments.size(); ++visit.moving) {
        if (!arguments[visit.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
    }
    sort_sync_vectors(visit.vectors);
    return cart_product_synchronised_events(events_, visit.vectors, arguments, visitor, visit.op);
}

std::unique_ptr<Formats> SynchronisingExternalChoiceOperator::high_level_formats(
    std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(count + 1);
    HighLevelMachine::UnCompiledFormat& open = formats->at(0);
    activate_first_components(open, count);
    for (unsigned const event : events_) {
        append_rule(open, event, 0, HighLevelMachine::every_component(count, event));
    }
    for (unsigned index = 0; index < count; ++index) {
        for (unsigned const event : alphabets[index]) {
            if (!events_.member(event)) {
                append_rule(open, event, event == tau ? 0 : index + 1, {std::pair(index, event)});
            }
        }
        make_identity_format(*formats, index + 1, alphabets[index], index);
    }
    return formats;
}

std::uint64_t SynchronisingExternalChoiceOperator::hash_code() const {
    return hash_from(hash_seed);
}

unsigned SynchronisingExternalChoiceOperator::operator_kind() const {
    return synchronising_choice_kind;
}

RecursionType SynchronisingExternalChoiceOperator::recursion_type() const {
    return RecursionType::ends_others;
}

bool SynchronisingExternalChoiceOperator::allows_recursion(unsigned) const {
    return true;
}

ArgumentState SynchronisingExternalChoiceOperator::process_state(unsigned) const {
    return ArgumentState::on;
}

bool SynchronisingExternalChoiceOperator::discarded_by(unsigned) const {
    return false;
}

TurnedOnBy SynchronisingExternalChoiceOperator::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel
SynchronisingExternalChoiceOperator::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

bool SynchronisingExternalChoiceOperator::is_commutative() const {
    return false;
}

void SynchronisingExternalChoiceOperator::pretty_print(Printer& printer) const {
    print_bracketed_set(printer, "[+", events_, "+]");
}

void SynchronisingExternalChoiceOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer,
                                "Synchronising External Choice synchronising on:", events_);
}

void SynchronisingExternalChoiceOperator::pretty_print_operator_process(
    Printer& printer, OperatorProcess const& process) const {
    nary_operator(printer, "STOP", process);
}

std::pair<unsigned, unsigned>
SynchronisingExternalChoiceOperator::pretty_print_information() const {
    return {6, left_associative};
}

bool SynchronisingExternalChoiceOperator::pretty_print_is_same_operator(
    Operator const& other) const {
    return *this == other;
}

} // namespace Calder::ProcessCompiler::CSP
