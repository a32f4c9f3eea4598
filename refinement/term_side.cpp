#include "refinement/term_side.h"

#include "process_compiler/recursion_watch.h"

namespace Calder::Refinement {

using ProcessCompiler::ProcessPointer;

TermSide::TermSide(ProcessPointer const& start, ProcessCompiler::NamedProcessSource const& source,
                   SearchMonitor& monitor)
    : m_source(source), m_monitor(monitor) {
    number(start);
}

/// A construct may report a transition twice, so each is marked as one that may repeat.
void TermSide::append_steps(Word const* state, Steps& steps, Scratch&) {
    auto const take = [&](unsigned event, ProcessPointer const& successor) {
        if (m_stack.is_low()) { // before the successor, which may be as deep, is hashed
            throw ProcessCompiler::NestedTooDeeply();
        }
        StateNumber const target = number(successor);
        steps.make_room(1);
        steps.add_word(event | Steps::may_repeat, target);
        m_monitor.go_on(1, growth_bytes(m_monitor.work_ahead()));
        return true;
    };
    // The term stays where it is while others are added; its pointer in the table does not.
    ProcessCompiler::Process const& term = *m_terms.term(static_cast<StateNumber>(*state));
    ProcessCompiler::TransitionVisitor const visitor =
        [&take](unsigned event, ProcessPointer const& successor) { return take(event, successor); };
    ProcessCompiler::MemoryInUse const in_use(m_components);
    term.visit_transitions(m_source, visitor);
}

ProcessPointer TermSide::term(Word const* state) const {
    return m_terms.term(static_cast<StateNumber>(*state));
}

StateNumber TermSide::number(ProcessPointer const& term) {
    StateNumber const number = m_terms.find_or_add(term);
    if (number == StateSpace::no_state) {
        m_monitor.stop(StateSpace::Outcome::state_limit);
        throw StateSpace::SearchEnded();
    }
    return number;
}

} // namespace Calder::Refinement
