#include "csp/event_set_process.h"

#include "core/hash_combine.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

EventSetProcess::EventSetProcess(Session& session, EventSet const& events)
    : events_(session.event_number_set(events)) {}

EventSetProcess::EventSetProcess(BitSet const& events) : events_(events) {}

EventSetProcess::~EventSetProcess() = default;

unsigned EventSetProcess::argument_count() const {
    return 0;
}

ProcessPointer const& EventSetProcess::argument(unsigned) const {
    std::abort();
}

void EventSetProcess::set_arguments(ProcessArray const&) {}

std::unique_ptr<Formats> EventSetProcess::high_level_formats(std::vector<BitSet> const&) const {
    std::abort();
}

std::uint64_t EventSetProcess::hash_from(std::uint64_t seed) const {
    return m_hash.get([this, seed] { return hash_combine(seed, events_.folded_words()); });
}

bool EventSetProcess::operator==(Process const& other) const {
    return other.kind() == kind() && events_ == static_cast<EventSetProcess const&>(other).events_;
}

bool EventSetProcess::operator!=(Process const& other) const {
    return other.kind() != kind() || events_ != static_cast<EventSetProcess const&>(other).events_;
}

RecursionType EventSetProcess::recursion_type() const {
    return RecursionType::starts_none;
}

bool EventSetProcess::allows_recursion(unsigned) const {
    std::abort();
}

ArgumentState EventSetProcess::process_state(unsigned) const {
    std::abort();
}

bool EventSetProcess::discarded_by(unsigned) const {
    std::abort();
}

TurnedOnBy EventSetProcess::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel EventSetProcess::preferred_compilation_level(bool) const {
    return CompilationLevel::low;
}

void EventSetProcess::pretty_print(Printer& printer) const {
    pretty_print_operator(printer);
    if (printer.abbreviate) {
        printer << "(…) ";
        return;
    }
    printer << "(";
    print_event_set(printer, events_);
    printer << ")";
}

std::pair<unsigned, unsigned> EventSetProcess::pretty_print_information() const {
    return {0, non_associative};
}

bool EventSetProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind();
}

} // namespace Calder::ProcessCompiler::CSP
