#include "process_compiler/event.h"

namespace Calder::ProcessCompiler {

Event::Event(std::string name) : m_name(std::move(name)) {}

Event::~Event() = default;

void Event::pretty_print(Printer& printer) const {
    printer << m_name;
}

EventSet::EventSet(std::vector<EventPointer> events) : m_events(std::move(events)) {}

EventSet::~EventSet() = default;

void EventSet::pretty_print(Printer& printer) const {
    char const* separator = "{";
    for (EventPointer const& event : m_events) {
        printer << separator;
        event->pretty_print(printer);
        separator = ", ";
    }
    printer << (m_events.empty() ? "{}" : "}");
}

} // namespace Calder::ProcessCompiler
