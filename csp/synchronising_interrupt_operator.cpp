#include "csp/synchronising_interrupt_operator.h"

#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/shared_stop.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

SynchronisingInterruptOperator::SynchronisingInterruptOperator(BitSet const& synchronised_events)
    : EventSetOperator(synchronised_events) {}

SynchronisingInterruptOperator::~SynchronisingInterruptOperator() = default;

bool SynchronisingInterruptOperator::visit_transitions(NamedProcessSource const& source,
                                                       TransitionVisitor const& visitor,
                                                       ProcessArray const& arguments) const {
    SynchronisedVisit visit(self(), arguments, visitor);
    bool const first_visited = visit_argument(
        arguments[0], source, [this, &visit](unsigned event, ProcessPointer const& successor) {
            if (m_events.member(event)) {
                return visit.keep(event, successor);
            }
            if (event == tick) {
                return visit.visitor(tick, shared_stop);
            }
            return visit.move(event, successor);
        });
    if (!first_visited) {
        return false;
    }
    visit.moving = 1;
    visit_argument( // whatever it answers
        arguments[1], source, [this, &visit](unsigned event, ProcessPointer const& successor) {
            if (m_events.member(event)) {
                return visit.keep(event, successor);
            }
            if (event == tick) {
                return visit.visitor(tick, shared_stop);
            }
            if (event == tau) {
                return visit.move(tau, successor);
            }
            return visit.visitor(event, successor);
        });
    return visit.combine_on(m_events);
}

std::unique_ptr<Formats>
SynchronisingInterruptOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(alphabets[0].member(tick) ? 3 : 2);
    HighLevelMachine::UnCompiledFormat& both = formats->at(0);
    activate_first_components(both, 2);
    for (unsigned const event : alphabets[0]) {
        unsigned const other = m_events.member(event) ? event : no_event;
        append_rule(both, event, event == tick ? 2 : 0, {std::pair(0, event), std::pair(1, other)});
    }
    for (unsigned const event : alphabets[1].without(m_events)) {
        append_rule(both, event, event == tau ? 0 : 1,
                    {std::pair(0, no_event), std::pair(1, event)});
    }
    make_identity_format(*formats, 1, alphabets[1], 1);
    make_stop_format(*formats, 2); // also when no tick leads there
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
