#include "csp/event_set_prefix_process.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

EventSetPrefixProcess::EventSetPrefixProcess(BitSet const& events,
                                             ProcessPointer const& destination)
    : PrefixedProcess(events, destination) {}

EventSetPrefixProcess::~EventSetPrefixProcess() = default;

bool EventSetPrefixProcess::visit_transitions(NamedProcessSource const&,
                                              TransitionVisitor const& visitor) const {
    for (unsigned const event : events()) {
        if (!visitor(event, destination())) {
            return false;
        }
    }
    return true;
}

void EventSetPrefixProcess::visit_high_level_transitions(std::vector<BitSet> const&,
                                                         HighLevelVisitor const& visitor) const {
    ProcessPointer const same = self();
    for (unsigned const event : events()) {
        visitor({}, event, destination(), true);
    }
}

std::unique_ptr<Formats>
EventSetPrefixProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = formats_before_continuation(alphabets);
    for (unsigned const event : events()) {
        append_rule(formats->at(0), event, 1);
    }
    return formats;
}

void EventSetPrefixProcess::pretty_print(Printer& printer) const {
    if (printer.abbreviate) {
        printer << "{…} -> …";
        return;
    }
    printer << "{";
    print_event_set(printer, events());
    printer << "} -> ";
    print_right_operand(printer, *this, *destination());
}

void EventSetPrefixProcess::pretty_print_operator_description(Printer& printer) const {
    print_event_set_description(printer, shape.description, events());
}

} // namespace Calder::ProcessCompiler::CSP
