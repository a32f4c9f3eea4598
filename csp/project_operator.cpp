#include "csp/project_operator.h"

#include "csp/colours.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned project_kind = 8;
constexpr std::uint64_t hash_seed = 0x189b;

} // namespace

ProjectOperator::ProjectOperator(BitSet const& projected_events)
    : RelabellingOperator(projected_events) {}

ProjectOperator::ProjectOperator(Session& session, EventSet const& projected_events)
    : RelabellingOperator(session, projected_events) {}

ProjectOperator::~ProjectOperator() = default;

unsigned ProjectOperator::event_outside(unsigned event) const {
    return event == tick || events_.member(event) ? event : tau;
}

std::uint64_t ProjectOperator::hash_code() const {
    return hash_from(hash_seed);
}

unsigned ProjectOperator::operator_kind() const {
    return project_kind;
}

void ProjectOperator::pretty_print(Printer& printer) const {
    print_postfix_set(printer, "|\\", events_);
}

void ProjectOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Projecting event set:", events_);
}

} // namespace Calder::ProcessCompiler::CSP
