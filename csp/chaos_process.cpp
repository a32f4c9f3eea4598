#include "csp/chaos_process.h"

#include "core/panic.h"
#include "csp/colours.h"
#include "csp/prefix_process.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned chaos_kind = 17;
constexpr std::uint64_t hash_seed = 0x183b;

/// e -> `next` for each e of `events`, to choose from.
ProcessPointer choice_of_prefixes(BitSet const& events, ProcessPointer const& next) {
    OwningArray<ProcessPointer> prefixes(events.size());
    ProcessPointer* slot = prefixes.begin();
    for (unsigned const event : events) {
        *slot++ = new PrefixProcess(event, next);
    }
    return new ExternalChoiceProcess(prefixes);
}

} // namespace

ChaosProcess::ChaosProcess(Session& session, EventSet const& events)
    : EventSetProcess(session, events) {}

ChaosProcess::ChaosProcess(BitSet const& events) : EventSetProcess(events) {}

ChaosProcess::~ChaosProcess() = default;

bool ChaosProcess::visit_transitions(NamedProcessSource const&,
                                     TransitionVisitor const& visitor) const {
    return visitor(tau, shared_stop) && visitor(tau, choice_of_prefixes(events_, self()));
}

std::uint64_t ChaosProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer ChaosProcess::clone(bool) const {
    return new ChaosProcess(events_);
}

unsigned ChaosProcess::kind() const {
    return chaos_kind;
}

bool ChaosProcess::is_commutative() const {
    panic("Unary operator cannot be commutative");
}

void ChaosProcess::pretty_print_operator(Printer& printer) const {
    printer << "CHAOS";
}

void ChaosProcess::pretty_print_operator_description(Printer& printer) const {
    print_event_set_description(printer, "Chaos over event set:", events_);
}

} // namespace Calder::ProcessCompiler::CSP
