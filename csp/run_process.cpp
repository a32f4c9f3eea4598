#include "csp/run_process.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"

namespace Calder::ProcessCompiler::CSP {

RunProcess::RunProcess(Session& session, EventSet const& events)
    : EventSetProcess(session, events) {}

RunProcess::RunProcess(BitSet const& events) : EventSetProcess(events) {}

RunProcess::~RunProcess() = default;

bool RunProcess::visit_transitions(NamedProcessSource const&,
                                   TransitionVisitor const& visitor) const {
    ProcessPointer const same = self();
    for (unsigned const event : m_events) {
        if (!visitor(event, same)) {
            return false;
        }
    }
    return true;
}

} // namespace Calder::ProcessCompiler::CSP
