#include "csp/generalised_parallel_operator.h"

#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/visit_each.h"

namespace Calder::ProcessCompiler::CSP {

GeneralisedParallelOperator::GeneralisedParallelOperator(BitSet const& synchronised)
    : EventSetOperator(synchronised) {
    m_events.insert(tick);
}

GeneralisedParallelOperator::~GeneralisedParallelOperator() = default;

bool GeneralisedParallelOperator::visit_transitions(NamedProcessSource const& source,
                                                    TransitionVisitor const& visitor,
                                                    ProcessArray const& arguments) const {
    if (arguments.empty()) {
        return true;
    }
    SynchronisedVisit visit(self(), arguments, visitor);
    return visit_each(arguments, visit.moving, source,
                      [this, &visit](unsigned event, ProcessPointer const& successor) {
                          return m_events.member(event) ? visit.keep(event, successor)
                                                        : visit.move(event, successor);
                      }) &&
           visit.combine_on(m_events);
}

std::unique_ptr<Formats>
GeneralisedParallelOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, count);
    append_joint_rules(running, count, m_events);
    append_joint_rules(running, count, {tick}); // a second time
    for (unsigned index = 0; index < count; ++index) {
        append_argument_rules(running, index, alphabets[index].without(m_events),
                              [](unsigned) { return 0U; });
    }
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
