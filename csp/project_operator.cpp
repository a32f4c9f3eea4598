#include "csp/project_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned project_kind = 8;
constexpr std::uint64_t hash_seed = 0x189b;

/// The other operator as one of this kind; only asked of such a one.
ProjectOperator const& as_project(Operator const& other) {
    return static_cast<ProjectOperator const&>(other);
}

} // namespace

ProjectOperator::ProjectOperator(BitSet const& projected_events)
    : projected_events_(projected_events) {}

ProjectOperator::ProjectOperator(Session& session, EventSet const& projected_events)
    : projected_events_(session.event_number_set(projected_events)) {}

ProjectOperator::~ProjectOperator() = default;

unsigned ProjectOperator::event_outside(unsigned event) const {
    return event == tick || projected_events_.member(event) ? event : tau;
}

bool ProjectOperator::visit_transitions(NamedProcessSource const& source,
                                        TransitionVisitor const& visitor,
                                        ProcessArray const& arguments) const {
    struct {
        ProjectOperator const& applied;
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
ProjectOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(1);
    activate_first_components(formats->at(0), 1);
    for (unsigned const event : alphabets[0]) {
        append_rule(formats->at(0), event_outside(event), 0, {std::pair(0, event)});
    }
    return formats;
}

std::uint64_t ProjectOperator::hash_code() const {
    return m_hash.get([this] { return hash_combine(hash_seed, projected_events_.folded_words()); });
}

bool ProjectOperator::operator==(Operator const& other) const {
    return other.operator_kind() == project_kind &&
           projected_events_ == as_project(other).projected_events_;
}

bool ProjectOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != project_kind ||
           projected_events_ != as_project(other).projected_events_;
}

unsigned ProjectOperator::operator_kind() const {
    return project_kind;
}

bool ProjectOperator::is_commutative() const {
    return false;
}

void ProjectOperator::pretty_print(Printer& printer) const {
    print_postfix_set(printer, "|\\", projected_events_);
}

void ProjectOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Projecting event set:", projected_events_);
}

void ProjectOperator::pretty_print_operator_process(Printer& printer,
                                                    OperatorProcess const& process) const {
    print_postfix(printer, process);
}

std::pair<unsigned, unsigned> ProjectOperator::pretty_print_information() const {
    return {10, left_associative};
}

bool ProjectOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == project_kind;
}

} // namespace Calder::ProcessCompiler::CSP
