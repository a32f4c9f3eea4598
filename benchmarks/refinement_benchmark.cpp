#include "benchmarks/measurement.h"
#include "benchmarks/philosophers.h"
#include "csp/chaos_process.h"
#include "csp/run_process.h"
#include "refinement/questions.h"

namespace Calder::Benchmarks {
namespace {

using Refinement::Answer;
using Refinement::Model;
using Refinement::QuestionOptions;
using Refinement::Verdict;

/// Every event of so many philosophers.
BitSet events_of(unsigned count) {
    BitSet events;
    for (unsigned event = 0; event < 6 * count; ++event) {
        events.insert(first_visible_event + event);
    }
    return events;
}

/// Asks `question` again and again; counts as measure_machine does.
template <typename Question>
void measure_question(benchmark::State& state, Verdict expected, Question const& question) {
    std::uint64_t transitions = 0;
    for (auto _ : state) {
        Answer const answer = question();
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

/// What all others are compared with. Argument: philosophers.
void exploration(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    StateSpace::RunOptions options;
    options.keep_transitions = false;
    measure_machine(state, model.start, model.source, options);
}
BENCHMARK(exploration)->Arg(8)->Arg(9)->Unit(benchmark::kMillisecond);

/// RUN(Events) [T= TABLE.
void run_traces(benchmark::State& state) {
    auto const count = static_cast<unsigned>(state.range(0));
    Philosophers const model(count);
    ProcessPointer const run = new RunProcess(events_of(count));
    measure_question(state, Verdict::holds, [&] {
        return Refinement::refinement(run, model.start, Model::traces, model.source);
    });
}
BENCHMARK(run_traces)->Arg(8)->Arg(9)->Unit(benchmark::kMillisecond);

/// CHAOS(Events) [FD= TABLE: what holds, though there is a deadlock.
void chaos_failures_divergences(benchmark::State& state) {
    auto const count = static_cast<unsigned>(state.range(0));
    Philosophers const model(count);
    ProcessPointer const chaos = new ChaosProcess(events_of(count));
    measure_question(state, Verdict::holds, [&] {
        return Refinement::refinement(chaos, model.start, Model::failures_divergences,
                                      model.source);
    });
}
BENCHMARK(chaos_failures_divergences)->Arg(8)->Arg(9)->Unit(benchmark::kMillisecond);

/// TABLE [FD= TABLE: the abstract side is as large.
void itself_failures_divergences(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    measure_question(state, Verdict::holds, [&] {
        return Refinement::refinement(model.start, model.start, Model::failures_divergences,
                                      model.source);
    });
}
BENCHMARK(itself_failures_divergences)->Arg(6)->Arg(7)->Unit(benchmark::kMillisecond);

/// The deadlock, when everyone has one fork: two steps for each philosopher.
void deadlock(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    measure_question(state, Verdict::fails,
                     [&] { return Refinement::deadlock_free(model.start, model.source); });
}
BENCHMARK(deadlock)->Arg(9)->Arg(10)->Unit(benchmark::kMillisecond);

/// An exploration of as many states as that search reaches.
void exploration_up_to_the_deadlock(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    StateSpace::RunOptions options;
    options.keep_transitions = false;
    options.max_states = Refinement::deadlock_free(model.start, model.source).state_count;
    measure_machine(state, model.start, model.source, options);
}
BENCHMARK(exploration_up_to_the_deadlock)->Arg(9)->Arg(10)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Calder::Benchmarks
