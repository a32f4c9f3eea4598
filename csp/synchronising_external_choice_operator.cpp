#include "csp/synchronising_external_choice_operator.h"

#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/shared_stop.h"
#include "csp/visit_each.h"

namespace Calder::ProcessCompiler::CSP {

SynchronisingExternalChoiceOperator::SynchronisingExternalChoiceOperator(
    BitSet const& synchronised_events)
    : EventSetOperator(synchronised_events) {}

SynchronisingExternalChoiceOperator::~SynchronisingExternalChoiceOperator() = default;

bool SynchronisingExternalChoiceOperator::visit_transitions(NamedProcessSource const& source,
                                                            TransitionVisitor const& visitor,
                                                            ProcessArray const& arguments) const {
    if (arguments.empty()) {
        return true;
    }
    SynchronisedVisit visit(self(), arguments, visitor);
    return visit_each(arguments, visit.moving, source,
                      [this, &visit](unsigned event, ProcessPointer const& successor) {
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
                      }) &&
           visit.combine_on(m_events);
}

std::unique_ptr<Formats> SynchronisingExternalChoiceOperator::high_level_formats(
    std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(count + 1);
    HighLevelMachine::UnCompiledFormat& open = formats->at(0);
    activate_first_components(open, count);
    append_joint_rules(open, count, m_events);
    for (unsigned index = 0; index < count; ++index) {
        append_argument_rules(open, index, alphabets[index].without(m_events),
                              [index](unsigned event) { return event == tau ? 0 : index + 1; });
        make_identity_format(*formats, index + 1, alphabets[index], index);
    }
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
