#include "csp/prefix_process.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

PrefixProcess::PrefixProcess(Session& session, EventPointer const& event)
    : PrefixedProcess(session.event_number(*event), nullptr) {}

PrefixProcess::PrefixProcess(unsigned const& event, ProcessPointer const& destination)
    : PrefixedProcess(event, destination) {}

PrefixProcess::~PrefixProcess() = default;

bool PrefixProcess::visit_transitions(NamedProcessSource const&,
                                      TransitionVisitor const& visitor) const {
    return visitor(event(), destination());
}

void PrefixProcess::visit_high_level_transitions(std::vector<BitSet> const&,
                                                 HighLevelVisitor const& visitor) const {
    ProcessPointer const same = self();
    visitor({}, event(), destination(), true);
}

std::unique_ptr<Formats>
PrefixProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = formats_before_continuation(alphabets);
    append_rule(formats->at(0), event(), 1);
    return formats;
}

void PrefixProcess::pretty_print(Printer& printer) const {
    print_event(printer, event());
    printer << " -> ";
    if (printer.abbreviate) {
        printer << "…";
        return;
    }
    print_right_operand(printer, *this, *destination());
}

void PrefixProcess::pretty_print_operator_description(Printer& printer) const {
    printer << shape.description;
    print_event(printer, event());
}

} // namespace Calder::ProcessCompiler::CSP
