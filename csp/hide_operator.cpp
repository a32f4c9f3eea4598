#include "csp/hide_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned hide_kind = 4;
constexpr std::uint64_t hash_seed = 0x62b;

/// The other operator as one of this kind; only asked of such a one.
HideOperator const& as_hide(Operator const& other) {
    return static_cast<HideOperator const&>(other);
}

} // namespace

HideOperator::HideOperator(BitSet const& hidden_events) : hidden_events_(hidden_events) {}

HideOperator::HideOperator(Session& session, EventSet const& hidden_events)
    : hidden_events_(session.event_number_set(hidden_events)) {}

HideOperator::~HideOperator() = default;

unsigned HideOperator::event_outside(unsigned event) const {
    return hidden_events_.member(event) ? tau : event;
}

bool HideOperator::visit_transitions(NamedProcessSource const& source,
                                     TransitionVisitor const& visitor,
                                     ProcessArray const& arguments) const {
    struct {
        HideOperator const& applied;
        OperatorPointer const op;
        TransitionVisitor const& visitor;
    } const step{*this, self(), visitor};
    return arguments[0]->visit_transitions(
        source, [&step](unsigned event, ProcessPointer const& successor) {
            return step.visitor(step.applied.event_outside(event),
                                new OperatorProcess(step.op, successor));
        });
}

std::unique_ptr<Formats>
HideOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(1);
    activate_first_components(formats->at(0), 1);
    for (unsigned const event : alphabets[0]) {
        append_rule(formats->at(0), event_outside(event), 0, {std::pair(0, event)});
    }
    return formats;
}

std::uint64_t HideOperator::hash_code() const {
    return m_hash.get([this] { return hash_combine(hash_seed, hidden_events_.folded_words()); });
}

bool HideOperator::operator==(Operator const& other) const {
    return other.operator_kind() == hide_kind && hidden_events_ == as_hide(other).hidden_events_;
}

bool HideOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != hide_kind || hidden_events_ != as_hide(other).hidden_events_;
}

unsigned HideOperator::operator_kind() const {
    return hide_kind;
}

bool HideOperator::is_commutative() const {
    return false;
}

void HideOperator::pretty_print(Printer& printer) const {
    print_postfix_set(printer, "\\", hidden_events_);
}

void HideOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Hiding event set:", hidden_events_);
}

void HideOperator::pretty_print_operator_process(Printer& printer,
                                                 OperatorProcess const& process) const {
    print_postfix(printer, process);
}

std::pair<unsigned, unsigned> HideOperator::pretty_print_information() const {
    return {10, left_associative};
}

bool HideOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == hide_kind;
}

} // namespace Calder::ProcessCompiler::CSP
