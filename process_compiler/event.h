#pragma once

#include "process_compiler/process.h"

#include <string>

namespace Calder::ProcessCompiler {

/// An event by its name, such as `up.0.1`; a session gives it its number. Prints its name.
class CALDER_PROCESS_COMPILER_EXPORT Event : public AtomicReferenceCounted, public PrettyPrintable {
  public:
    explicit Event(std::string name);
    ~Event() override;

    std::string const& name() const { return m_name; }
    void pretty_print(Printer& printer) const override;

  private:
    std::string m_name;
};

using EventPointer = boost::intrusive_ptr<Event>;

/// Events in a given order. Prints as `{a, b.1}`.
class CALDER_PROCESS_COMPILER_EXPORT EventSet : public AtomicReferenceCounted,
                                                public PrettyPrintable {
  public:
    explicit EventSet(std::vector<EventPointer> events);
    ~EventSet() override;

    std::vector<EventPointer> const& events() const { return m_events; }
    void pretty_print(Printer& printer) const override;

  private:
    std::vector<EventPointer> m_events;
};

using EventSetPointer = boost::intrusive_ptr<EventSet>;

} // namespace Calder::ProcessCompiler
