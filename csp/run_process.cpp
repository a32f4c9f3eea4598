#include "csp/run_process.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned run_kind = 18;
constexpr std::uint64_t hash_seed = 0x1a4d;

} // namespace

RunProcess::RunProcess(Session& session, EventSet const& events)
    : EventSetProcess(session, events) {}

RunProcess::RunProcess(BitSet const& events) : EventSetProcess(events) {}

RunProcess::~RunProcess() = default;

bool RunProcess::visit_transitions(NamedProcessSource const&,
                                   TransitionVisitor const& visitor) const {
    ProcessPointer const same = self();
    for (unsigned const event : events_) {
        if (!visitor(event, same)) {
            return false;
        }
    }
    return true;
}

std::uint64_t RunProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer RunProcess::clone(bool) const {
    return new RunProcess(events_);
}

unsigned RunProcess::kind() const {
    return run_kind;
}

bool RunProcess::is_commutative() const {
    return false;
}

void RunProcess::pretty_print_operator(Printer& printer) const {
    printer << "RUN";
}

void RunProcess::pretty_print_operator_description(Printer& printer) const {
    print_event_set_description(printer, "Run over event set:", events_);
}

} // namespace Calder::ProcessCompiler::CSP
