#include "csp/sequential_composition_process.h"

#include "csp/colours.h"
#include "process_compiler/recursion_watch.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

SequentialCompositionProcess::SequentialCompositionProcess() = default;

SequentialCompositionProcess::SequentialCompositionProcess(ProcessPointer const& first,
                                                           ProcessPointer const& second)
    : BinaryProcess(first, second) {}

SequentialCompositionProcess::~SequentialCompositionProcess() = default;

bool SequentialCompositionProcess::visit_transitions(NamedProcessSource const& source,
                                                     TransitionVisitor const& visitor) const {
    watch_recursion();
    struct {
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{m_second, visitor};
    return visit_argument(
        m_first, source, [&step](unsigned event, ProcessPointer const& successor) {
            if (event == tick) {
                return step.visitor(tau, step.second);
            }
            return step.visitor(event, new SequentialCompositionProcess(successor, step.second));
        });
}

void SequentialCompositionProcess::visit_high_level_transitions(
    std::vector<BitSet> const& alphabets, HighLevelVisitor const& visitor) const {
    ProcessPointer const same = self();
    for (unsigned const event : alphabets[0]) {
        if (event == tick) {
            visitor({tick}, tau, m_second, true);
        } else {
            visitor({event}, event, same, false);
        }
    }
}

std::unique_ptr<Formats>
SequentialCompositionProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    using HighLevelMachine::Move;
    auto formats = std::make_unique<Formats>(2);
    activate_first_components(formats->at(0), 1);
    append_argument_rules(formats->at(0), 0, alphabets[0], [](unsigned event) {
        return event == tick ? Move{tau, 1} : Move{event, 0};
    });
    make_identity_format(*formats, 1, alphabets[1], 1);
    return formats;
}

} // namespace Calder::ProcessCompiler::CSP
