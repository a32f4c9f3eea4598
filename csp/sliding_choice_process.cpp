#include "csp/sliding_choice_process.h"

#include "csp/colours.h"
#include "process_compiler/recursion_watch.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

SlidingChoiceProcess::SlidingChoiceProcess() = default;

SlidingChoiceProcess::SlidingChoiceProcess(ProcessPointer const& first,
                                           ProcessPointer const& second)
    : BinaryProcess(first, second) {}

SlidingChoiceProcess::~SlidingChoiceProcess() = default;

bool SlidingChoiceProcess::visit_transitions(NamedProcessSource const& source,
                                             TransitionVisitor const& visitor) const {
    watch_recursion();
    struct {
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{m_second, visitor};
    return visitor(tau, m_second) &&
           visit_argument(
               m_first, source, [&step](unsigned event, ProcessPointer const& successor) {
                   if (event == tau) {
                       return step.visitor(tau, new SlidingChoiceProcess(successor, step.second));
                   }
                   return step.visitor(event, successor);
               });
}

std::unique_ptr<Formats>
SlidingChoiceProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(3);
    HighLevelMachine::UnCompiledFormat& undecided = formats->at(0);
    activate_first_components(undecided, 1);
    append_argument_rules(undecided, 0, alphabets[0],
                          [](unsigned event) { return event == tau ? 0U : 1U; });
    append_rule(undecided, tau, 2);
    make_identity_format(*formats, 1, alphabets[0], 0);
    make_identity_format(*formats, 2, alphabets[1], 1);
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
