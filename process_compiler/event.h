#pragma once

#include "process_compiler/process.h"

#include <string>

namespace Calder::ProcessCompiler {

/// An event by its name, such as `up.0.1`; a session gives it its number. Prints its name.
class CALDER_PROCESS_COMPILER_EXPORT Event : public AtomicReferenceCounted, public PrettyPrintable {
  public:
    /// The name is not checked.
    explicit Event(std::string name);
    ~Event() override;

    /// As it was declared, with its values: `up.0.1`.
    std::string const& name() const { return m_name; }
    /// The name as it is.
    void pretty_print(Printer& printer) const override;

  private:
    std::string m_name;
};

/// Sessions and sets share the events that they hold.
using EventPointer = boost::intrusive_ptr<Event>;

/// Events in a given order. Prints as `{a, b.1}`.
class CALDER_PROCESS_COMPILER_EXPORT EventSet : public AtomicReferenceCounted,
                                                public PrettyPrintable {
  public:
    /// Kept as given, neither sorted nor checked for doubles.
    explicit EventSet(std::vector<EventPointer> events);
    ~EventSet() override;

    /// In the order in which they are printed.
    std::vector<EventPointer> const& events() const { return m_events; }
    /// The names as they are, in braces and with a comma and a blank between.
    void pretty_print(Printer& printer) const override;

  private:
    std::vector<EventPointer> m_events;
};

/// As a session makes it for printing.
using EventSetPointer = boost::intrusive_ptr<EventSet>;

} // namespace Calder::ProcessCompiler
