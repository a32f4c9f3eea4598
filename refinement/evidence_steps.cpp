#include "refinement/evidence_steps.h"

#include "process_compiler/event_numbers.h"
#include "refinement/inner_events.h"

#include <algorithm>

namespace Calder::Refinement {

using ProcessCompiler::tau;
using StateSpace::ConfigurationNumber;
using StateSpace::ConfigurationTables;
using StateSpace::FlatRules;

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
    RunState described{number};
    described.term = side.term(state);
    if (RunningMachine const* const machine = side.machine()) {
        described.configuration = machine->tables->configuration_of(state);
        auto const leaves = machine->tables->leaves(described.configuration);
        auto const& slots = machine->tables->layout_of(state).slots();
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            described.slots.push_back({leaves[slot], slots[slot].read(state)});
        }
    }
    return described;
}

EvidenceStep described_step(Side const& side, StateNumber source, Word const* source_words,
                            unsigned event, StateNumber target, Word const* target_words) {
    EvidenceStep step{event, described_state(side, source, source_words), target};
    RunningMachine const* const machine = side.machine();
    if (machine == nullptr) {
        return step;
    }
    ConfigurationTables const& tables = *machine->tables;
    ConfigurationNumber const configuration = tables.configuration_of(source_words);
    auto const rule =
        tables.table(configuration)
            .rule_between(source_words, event, {target_words, target_words + side.width()});
    if (rule) {
        FlatRules const& flat = tables.rules(configuration);
        auto const participants = flat.participants_of(flat.rules[*rule]);
        step.participants.assign(participants.begin(), participants.end());
        std::sort(step.participants.begin(), step.participants.end(),
                  [](auto const& left, auto const& right) { return left.slot < right.slot; });
        if (event == tau) {
            step.inner_events =
                inner_events(tables.configurations(), configuration, step.participants);
        }
    }
    return step;
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
