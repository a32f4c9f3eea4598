#pragma once

#include "refinement/questions.h"

#include <benchmark/benchmark.h>

namespace Calder::Benchmarks {

/// Asks `question` again and again; counts as measure_machine does, and the steps of the evidence.
template <typename Question> void
measure_question(benchmark::State& state, Refinement::Verdict expected, Question const& question) {
    std::uint64_t transitions = 0;
    for (auto _ : state) {
        Refinement::Answer const answer = question();
        if (answer.verdict != expected || !answer.machine.machine) {
            state.SkipWithError("the wrong answer, or no machine");
            return;
        }
        transitions += answer.transition_count;
        state.counters["states"] = answer.state_count;
        state.counters["bytes/state"] =
            static_cast<double>(answer.memory_bytes) / static_cast<double>(answer.state_count);
        state.counters["transitions"] = static_cast<double>(answer.transition_count);
        state.counters["steps"] = static_cast<double>(answer.evidence.steps.size());
    }
    state.counters["transitions/s"] =
        benchmark::Counter(static_cast<double>(transitions), benchmark::Counter::kIsRate);
}

} // namespace Calder::Benchmarks
