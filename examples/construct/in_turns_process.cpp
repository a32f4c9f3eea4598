#include "in_turns_process.h"

#include <calder/csp/external_choice_process.h>
#include <calder/process_compiler/transition_memory.h>

namespace InTurns {

InTurnsProcess::InTurnsProcess() = default;

InTurnsProcess::InTurnsProcess(ProcessPointer const& first, ProcessPointer const& second)
    : BinaryProcess(first, second) {}

InTurnsProcess::~InTurnsProcess() = default;

bool InTurnsProcess::visit_transitions(NamedProcessSource const& source,
                                       TransitionVisitor const& visitor) const {
    watch_recursion();
    struct {
        ProcessPointer const& first;
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{m_first, m_second, visitor};
    return visit_argument(
               m_first, source,
               [&step](unsigned event, ProcessPointer const& successor) {
                   if (event == tau) {
                       return step.visitor(tau, new InTurnsProcess(successor, step.second));
                   }
                   if (event == tick) {
                       return step.visitor(tick, new CSP::ExternalChoiceProcess(0U)); // STOP
                   }
                   return step.visitor(event, new InTurnsProcess(step.second, successor));
               }) &&
           visit_argument(m_second, source,
                          [&step](unsigned event, ProcessPointer const& successor) {
                              return event != tau ||
                                     step.visitor(tau, new InTurnsProcess(step.first, successor));
                          });
}

std::unique_ptr<Formats>
InTurnsProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    constexpr unsigned ended = 2;
    auto formats = std::make_unique<Formats>(2);
    for (unsigned turn : {0U, 1U}) {
        unsigned const other = 1 - turn;
        Calder::HighLevelMachine::UnCompiledFormat& format = formats->at(turn);
        activate_first_components(format, 2);
        append_argument_rules(format, turn, alphabets[turn], [&](unsigned event) {
            return event == tau ? turn : event == tick ? ended : other;
        });
        if (alphabets[other].member(tau)) {
            append_rule(format, tau, turn, {std::pair(other, tau)});
        }
    }
    make_stop_format(*formats, ended);
    return formats;
}

} // namespace InTurns
