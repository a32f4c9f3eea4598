#include "process_compiler/session.h"

namespace Calder::ProcessCompiler {

Session::Session() : m_events(1) {
    declare_event("tau");
    declare_event("tick");
}

Session::~Session() = default;

unsigned Session::declare_event(std::string const& name) {
    auto const [entry, is_new] = m_numbers.try_emplace(name, number_bound());
    if (is_new) {
        try {
            m_events.push_back(EventPointer(new Event(name)));
        } catch (...) {
            m_numbers.erase(entry);
            throw;
        }
    }
    return entry->second;
}

unsigned Session::event_number(Event const& event) const {
    return event_number(event.name());
}

unsigned Session::event_number(std::string const& name) const {
    auto const entry = m_numbers.find(name);
    return entry == m_numbers.end() ? no_event : entry->second;
}

EventPointer Session::event_object(unsigned number) const {
    return number < m_events.size() ? m_events[number] : nullptr;
}

BitSet Session::event_number_set(EventSet const& events) const {
    BitSet numbers;
    for (EventPointer const& event : events.events()) {
        unsigned const number = event_number(*event);
        if (number != no_event) {
            numbers.insert(number);
        }
    }
    return numbers;
}

EventSetPointer Session::event_set_object(BitSet const& numbers) const {
    std::vector<EventPointer> events;
    for (unsigned const number : numbers) {
        if (EventPointer event = event_object(number)) {
            events.push_back(std::move(event));
        }
    }
    return EventSetPointer(new EventSet(std::move(events)));
}

} // namespace Calder::ProcessCompiler
