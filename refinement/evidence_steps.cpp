#include "refinement/evidence_steps.h"

#include "process_compiler/event_numbers.h"
#include "refinement/machine_steps.h"

#include <algorithm>

namespace Calder::Refinement {

using ProcessCompiler::tau;

namespace {

/// The step by which one pair reached another, when that was first reached.
EvidenceStep step_between(PairSearch& search, Side const& side, StateNumber source,
                          StateNumber target, bool is_silent) {
    PairSteps found;
    search.find_steps(source, found);
    for (std::size_t step = 0; step < found.steps.size(); ++step) {
        unsigned const event = found.steps.event(step);
        if ((!is_silent || event == tau) && search.target_of(found, step) == target) {
            return described_step(side, source, found.state.data(), event, target,
                                  found.steps.words(step));
        }
    }
    return {}; // not reached: the search followed such a step
}

} // namespace

RunState described_state(Side const& side, StateNumber number, Word const* state) {
    if (RunningMachine const* const machine = side.machine()) {
        return described_state(*machine, number, side.machine_words(state).data());
    }
    RunState described{number};
    described.term = side.term(state);
    return described;
}

EvidenceStep described_step(Side const& side, StateNumber source, Word const* source_words,
                            unsigned event, StateNumber target, Word const* target_words) {
    if (RunningMachine const* const machine = side.machine()) {
        return described_step(*machine, source, side.machine_words(source_words).data(), event,
                              target, side.machine_words(target_words).data());
    }
    return {event, described_state(side, source, source_words), target};
}

std::vector<EvidenceStep> steps_to(PairSearch& search, Side const& side, StateNumber pair) {
    std::vector<EvidenceStep> steps;
    for (; pair != 0; pair = search.pairs().parent(pair)) {
        steps.push_back(step_between(search, side, search.pairs().parent(pair), pair, false));
    }
    std::reverse(steps.begin(), steps.end());
    return steps;
}

std::vector<EvidenceStep> loop_through(PairSearch& search, Side const& side,
                                       std::vector<StateNumber> const& pairs) {
    std::vector<EvidenceStep> steps;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        steps.push_back(step_between(search, side, pairs[i], pairs[(i + 1) % pairs.size()], true));
    }
    return steps;
}

RunState state_of(PairSearch& search, Side const& side, StateNumber pair) {
    PairSteps found;
    search.find_steps(pair, found);
    return described_state(side, pair, found.state.data());
}

std::vector<unsigned> offer_of(PairSearch& search, StateNumber pair) {
    PairSteps found;
    search.find_steps(pair, found);
    std::vector<unsigned> events;
    for (std::size_t step = 0; step < found.steps.size(); ++step) {
        events.push_back(found.steps.event(step));
    }
    std::sort(events.begin(), events.end());
    events.erase(std::unique(events.begin(), events.end()), events.end());
    return events;
}

std::vector<unsigned> trace_of(std::vector<EvidenceStep> const& steps) {
    std::vector<unsigned> trace;
    for (EvidenceStep const& step : steps) {
        if (step.event != tau) {
            trace.push_back(step.event);
        }
    }
    return trace;
}

} // namespace Calder::Refinement
