#include "csp/hide_operator.h"

#include "csp/colours.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned hide_kind = 4;
constexpr std::uint64_t hash_seed = 0x62b;

} // namespace

HideOperator::HideOperator(BitSet const& hidden_events) : RelabellingOperator(hidden_events) {}

HideOperator::HideOperator(Session& session, EventSet const& hidden_events)
    : RelabellingOperator(session, hidden_events) {}

HideOperator::~HideOperator() = default;

unsigned HideOperator::event_outside(unsigned event) const {
    return events_.member(event) ? tau : event;
}

std::uint64_t HideOperator::hash_code() const {
    return hash_from(hash_seed);
}

unsigned HideOperator::operator_kind() const {
    return hide_kind;
}

void HideOperator::pretty_print(Printer& printer) const {
    print_postfix_set(printer, "\\", events_);
}

void HideOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Hiding event set:", events_);
}

} // namespace Calder::ProcessCompiler::CSP
