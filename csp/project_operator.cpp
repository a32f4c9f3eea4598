#include "csp/project_operator.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

ProjectOperator::ProjectOperator(BitSet const& projected_events)
    : RelabellingOperator(projected_events) {}

ProjectOperator::ProjectOperator(Session& session, EventSet const& projected_events)
    : RelabellingOperator(session, projected_events) {}

ProjectOperator::~ProjectOperator() = default;

unsigned ProjectOperator::event_outside(unsigned event) const {
    return event == tick || m_events.member(event) ? event : tau;
}

} // namespace Calder::ProcessCompiler::CSP
