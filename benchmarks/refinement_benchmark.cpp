#include "benchmarks/measurement.h"
#include "benchmarks/philosophers.h"
#include "benchmarks/questions.h"
#include "csp/chaos_process.h"
#include "csp/run_process.h"

namespace Calder::Benchmarks {
namespace {

using Refinement::Model;
using Refinement::Verdict;

/// Every event of so many philosophers.
BitSet events_of(unsigned count) {
    BitSet events;
    for (unsigned event = 0; event < 6 * count; ++event) {
        events.insert(first_visible_event + event);
    }
    return events;
}

/// What all others are compared with. Argument: philosophers.
void exploration(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    StateSpace::RunOptions options;
    options.keep_transitions = false;
    measure_machine(state, model.start, model.source, options);
}
BENCHMARK(exploration)->Arg(8)->Arg(9)->Unit(benchmark::kMillisecond);

Refinement::QuestionOptions by_threads(unsigned threads) {
    Refinement::QuestionOptions options;
    options.threads = threads;
    return options;
}

/// RUN(Events) [T= TABLE.
void measure_run_traces(benchmark::State& state, unsigned threads) {
    auto const count = static_cast<unsigned>(state.range(0));
    Philosophers const model(count);
    ProcessPointer const run = new RunProcess(events_of(count));
    measure_question(state, Verdict::holds, [&] {
        return Refinement::refinement(run, model.start, Model::traces, model.source,
                                      by_threads(threads));
    });
}

void run_traces(benchmark::State& state) {
    measure_run_traces(state, 1);
}
BENCHMARK(run_traces)->Arg(8)->Arg(9)->Unit(benchmark::kMillisecond);

/// Arguments: philosophers, threads.
void run_traces_by_threads(benchmark::State& state) {
    measure_run_traces(state, static_cast<unsigned>(state.range(1)));
}
BENCHMARK(run_traces_by_threads)
    ->ArgsProduct({{9, 10}, {1, 2}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// CHAOS(Events) [FD= TABLE: what holds, though there is a deadlock.
void measure_chaos(benchmark::State& state, unsigned threads) {
    auto const count = static_cast<unsigned>(state.range(0));
    Philosophers const model(count);
    ProcessPointer const chaos = new ChaosProcess(events_of(count));
    measure_question(state, Verdict::holds, [&] {
        return Refinement::refinement(chaos, model.start, Model::failures_divergences, model.source,
                                      by_threads(threads));
    });
}

void chaos_failures_divergences(benchmark::State& state) {
    measure_chaos(state, 1);
}
BENCHMARK(chaos_failures_divergences)->Arg(8)->Arg(9)->Unit(benchmark::kMillisecond);

/// Arguments: philosophers, threads.
void chaos_failures_divergences_by_threads(benchmark::State& state) {
    measure_chaos(state, static_cast<unsigned>(state.range(1)));
}
BENCHMARK(chaos_failures_divergences_by_threads)
    ->ArgsProduct({{9, 10}, {1, 2}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

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

/// The first philosopher puts down the right fork four times at most; all else may happen.
ProcessPointer four_rounds(unsigned count) {
    unsigned const last = first_visible_event + 2 * count * 2 + 1;
    BitSet const others = events_of(count).without(BitSet{last});
    ProcessPointer rounds = stop();
    for (unsigned round = 0; round < 4; ++round) {
        rounds = prefix(last, rounds);
    }
    return new InterleaveProcess(OwningArray<ProcessPointer>{new RunProcess(others), rounds});
}

/// It comes to a fifth one in 30 steps.
void fifth_round(benchmark::State& state) {
    auto const count = static_cast<unsigned>(state.range(0));
    Philosophers const model(count);
    ProcessPointer const abstract = four_rounds(count);
    measure_question(state, Verdict::fails, [&] {
        return Refinement::refinement(abstract, model.start, Model::traces, model.source);
    });
}
BENCHMARK(fifth_round)->Arg(9)->Arg(11)->Unit(benchmark::kMillisecond);

/// An exploration of the same states: of the table that has no fifth one.
void exploration_up_to_the_fifth_round(benchmark::State& state) {
    auto const count = static_cast<unsigned>(state.range(0));
    Philosophers const model(count);
    ProcessPointer const abstract = four_rounds(count);
    ProcessPointer const both = new OperatorProcess(
        new GeneralisedParallelOperator(events_of(count)), abstract, model.start);
    StateSpace::RunOptions options;
    options.keep_transitions = false;
    options.max_states =
        Refinement::refinement(abstract, model.start, Model::traces, model.source).state_count;
    measure_machine(state, both, model.source, options);
}
BENCHMARK(exploration_up_to_the_fifth_round)->Arg(9)->Arg(11)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Calder::Benchmarks
