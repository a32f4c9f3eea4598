#include "state_space/deadlock.h"

#include "process_compiler/event_numbers.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

bool is_stuck(LabelledTransitionSystem const& lts, StateNumber state) {
    return state < lts.explored_count() && lts.transitions(state).empty();
}

/// The step by which a state was first reached.
struct FirstStep {
    unsigned event = ProcessCompiler::no_event;
    StateNumber source = no_state;
};

/// The shortest way to `state`, and then one more step to a deadlock.
Deadlock deadlock_behind(StateNumber state, unsigned event, StateNumber target,
                         std::vector<FirstStep> const& first_steps) {
    Deadlock found{target, {event}, {state}};
    for (; state != 0; state = first_steps[state].source) {
        found.trace.push_back(first_steps[state].event);
        found.sources.push_back(first_steps[state].source);
    }
    std::reverse(found.trace.begin(), found.trace.end());
    std::reverse(found.sources.begin(), found.sources.end());
    return found;
}

} // namespace

// The numbers are breadth-first, so the first row that names a state is that of its parent in the
// breadth-first tree, and has a lower number: following the first steps back gives a shortest trace
// to any state. And the lower a state's number, the less deep it is; so the first transition other
// than a tick that leads to a stuck state, row by row, begins where such a transition can begin
// soonest. That need not be the stuck state's own first step, which may be a tick.
std::optional<Deadlock> find_deadlock(LabelledTransitionSystem const& lts) {
    if (is_stuck(lts, 0)) {
        return Deadlock{};
    }
    std::vector<FirstStep> first_steps(lts.state_count());
    for (StateNumber source = 0; source < lts.explored_count(); ++source) {
        for (auto const [event, target] : lts.transitions(source)) {
            if (event != ProcessCompiler::tick && is_stuck(lts, target)) {
                return deadlock_behind(source, event, target, first_steps);
            }
            if (first_steps[target].source == no_state) {
                first_steps[target] = FirstStep{event, source};
            }
        }
    }
    return std::nullopt;
}

} // namespace Calder::StateSpace
