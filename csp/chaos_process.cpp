#include "csp/chaos_process.h"

#include "core/kept_references.h"
#include "core/panic.h"
#include "csp/colours.h"
#include "csp/prefix_process.h"
#include "csp/shared_stop.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

/// e -> `next` for each e of `events`, to choose from.
ProcessPointer choice_of_prefixes(BitSet const& events, ProcessPointer const& next) {
    KeptReferences<Process> prefixes(events.size());
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
    ProcessPointer const same = self();
    return visitor(tau, shared_stop) && visitor(tau, choice_of_prefixes(m_events, same));
}

bool ChaosProcess::is_commutative() const {
    panic("Unary operator cannot be commutative");
}

} // namespace Calder::ProcessCompiler::CSP
