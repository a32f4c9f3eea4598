#include "csp/interleave_process.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "csp/visit_each.h"

namespace Calder::ProcessCompiler::CSP {

InterleaveProcess::InterleaveProcess(unsigned count) : NaryProcess(count) {}

InterleaveProcess::InterleaveProcess(ProcessArray const& arguments) : NaryProcess(arguments) {}

InterleaveProcess::InterleaveProcess(ProcessArray const& arguments, unsigned index,
                                     ProcessPointer const& replacement)
    : NaryProcess(arguments, index, replacement) {}

InterleaveProcess::~InterleaveProcess() = default;

bool InterleaveProcess::visit_transitions(NamedProcessSource const& source,
                                          TransitionVisitor const& visitor) const {
    struct {
        Successors successors;
        TransitionVisitor const& visitor;
        unsigned moving;
        unsigned able_to_terminate; // all before this one are
    } step{Successors(m_arguments), visitor, 0, 0};
    return visit_each(m_arguments, step.moving, source,
                      [&step](unsigned event, ProcessPointer const& successor) {
                          if (event == tick) {
                              step.able_to_terminate += step.able_to_terminate == step.moving;
                              return true;
                          }
                          return step.visitor(event, step.successors.with(step.moving, successor));
                      }) &&
           (step.able_to_terminate != argument_count() || visitor(tick, shared_stop));
}

std::unique_ptr<Formats>
InterleaveProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    unsigned const count = argument_count();
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, count);
    bool can_terminate = true;
    for (unsigned index = 0; index < count; ++index) {
        append_argument_rules(running, index, alphabets[index].without({tick}),
                              [](unsigned) { return 0U; });
        can_terminate = can_terminate && alphabets[index].member(tick);
    }
    if (can_terminate) {
        append_rule(running, tick, 0, HighLevelMachine::every_component(count, tick));
    }
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
