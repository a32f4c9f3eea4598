#pragma once

#include "process_compiler/event.h"

#include <string>
#include <unordered_map>

namespace Calder::ProcessCompiler {

/// The names of one compilation: which event has which number. Numbers 1 and 2 are tau and tick
/// from the start; visible events follow in the order of their declaration.
///
/// Reading a session is safe from several threads at once while nobody declares.
class CALDER_PROCESS_COMPILER_EXPORT Session {
  public:
    Session();
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /// The number of the event of this name, which is declared if it is new. Where memory
    /// runs out, the session is as before.
    unsigned declare_event(std::string const& name);

    /// @{
    /// The number of an event by its name; no_event when it is not declared.
    unsigned event_number(Event const& event) const;
    unsigned event_number(std::string const& name) const;
    /// @}

    /// The event of a number; null when there is none.
    EventPointer event_object(unsigned number) const;

    /// The numbers of the declared events of a set; events that are not declared are left out.
    BitSet event_number_set(EventSet const& events) const;

    /// A printable set of the events of these numbers, ascending; numbers without an event are left
    /// out.
    EventSetPointer event_set_object(BitSet const& numbers) const;

    /// One more than the largest event number.
    unsigned number_bound() const { return static_cast<unsigned>(m_events.size()); }

  private:
    std::vector<EventPointer> m_events; // by number; null at number 0
    std::unordered_map<std::string, unsigned> m_numbers;
};

} // namespace Calder::ProcessCompiler
