#include "csp/hide_operator.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

HideOperator::HideOperator(BitSet const& hidden_events) : RelabellingOperator(hidden_events) {}

HideOperator::HideOperator(Session& session, EventSet const& hidden_events)
    : RelabellingOperator(session, hidden_events) {}

HideOperator::~HideOperator() = default;

unsigned HideOperator::event_outside(unsigned event) const {
    return m_events.member(event) ? tau : event;
}

} // namespace Calder::ProcessCompiler::CSP
