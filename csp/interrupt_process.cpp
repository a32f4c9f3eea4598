#include "csp/interrupt_process.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/recursion_watch.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

InterruptProcess::InterruptProcess() = default;

InterruptProcess::InterruptProcess(ProcessPointer const& first, ProcessPointer const& second)
    : BinaryProcess(first, second) {}

InterruptProcess::~InterruptProcess() = default;

bool InterruptProcess::visit_transitions(NamedProcessSource const& source,
                                         TransitionVisitor const& visitor) const {
    watch_recursion();
    struct {
        ProcessPointer const& first;
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{m_first, m_second, visitor};
    return visit_argument(m_first, source,
                          [&step](unsigned event, ProcessPointer const& successor) {
                              if (event == tick) {
                                  return step.visitor(tick, shared_stop);
                              }
                              return step.visitor(event,
                                                  new InterruptProcess(successor, step.second));
                          }) &&
           visit_argument(
               m_second, source, [&step](unsigned event, ProcessPointer const& successor) {
                   if (event == tau) {
                       return step.visitor(tau, new InterruptProcess(step.first, successor));
                   }
                   return step.visitor(event, successor);
               });
}

std::unique_ptr<Formats>
InterruptProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(alphabets[0].member(tick) ? 3 : 2);
    HighLevelMachine::UnCompiledFormat& both = formats->at(0);
    activate_first_components(both, 2);
    append_argument_rules(both, 0, alphabets[0],
                          [](unsigned event) { return event == tick ? 2U : 0U; });
    append_argument_rules(both, 1, alphabets[1],
                          [](unsigned event) { return event == tau ? 0U : 1U; });
    make_identity_format(*formats, 1, alphabets[1], 1);
    make_stop_format(*formats, 2); // also when no tick leads there
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
