#include "csp/event_set_operator.h"

#include "core/hash_combine.h"

namespace Calder::ProcessCompiler::CSP {

EventSetOperator::EventSetOperator(BitSet const& events) : events_(events) {}

EventSetOperator::EventSetOperator(Session& session, EventSet const& events)
    : events_(session.event_number_set(events)) {}

EventSetOperator::~EventSetOperator() = default;

std::uint64_t EventSetOperator::hash_from(std::uint64_t seed) const {
    return m_hash.get([this, seed] { return hash_combine(seed, events_.folded_words()); });
}

bool EventSetOperator::operator==(Operator const& other) const {
    return other.operator_kind() == operator_kind() &&
           events_ == static_cast<EventSetOperator const&>(other).events_;
}

bool EventSetOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != operator_kind() ||
           events_ != static_cast<EventSetOperator const&>(other).events_;
}

} // namespace Calder::ProcessCompiler::CSP
