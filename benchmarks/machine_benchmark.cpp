#include "benchmarks/measurement.h"
#include "benchmarks/philosophers.h"
#include "benchmarks/probing.h"
#include "csp/rename_operator.h"
#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/run.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace Calder::Benchmarks {
namespace {

using StateSpace::RunOptions;

RunOptions counting(unsigned threads, StateSpace::StateNumber max_states = StateSpace::no_state) {
    RunOptions options;
    options.threads = threads;
    options.max_states = max_states;
    options.keep_transitions = false;
    return options;
}

/// Arguments: philosophers, threads.
void philosophers(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    measure_machine(state, model.start, model.source,
                    counting(static_cast<unsigned>(state.range(1))));
}
BENCHMARK(philosophers)
    ->ArgsProduct({{5, 6, 7, 8}, {1}})
    ->ArgsProduct({{9, 10, 11}, {1, 2, 8}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// The same with the transitions kept.
void philosophers_kept(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    RunOptions options = counting(static_cast<unsigned>(state.range(1)));
    options.keep_transitions = true;
    measure_machine(state, model.start, model.source, options);
}
BENCHMARK(philosophers_kept)
    ->ArgsProduct({{9, 10, 11}, {1, 2, 8}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// Argument: philosophers; whether transitions are kept. Runs by one, two and eight threads, not counting
/// compilation, and what no run by one thread can be faster than, see Probing, all of them in turn. The counters
/// are medians of ratios of speeds; `of probing` is that of transitions to lookups.
void philosophers_in_turn(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    auto const compiled =
        StateSpace::compile(StateSpace::make_term_graph(model.start, model.source), model.source);
    using Clock = std::chrono::steady_clock;
    auto const seconds_since = [](Clock::time_point begin) {
        return std::chrono::duration<double>(Clock::now() - begin).count();
    };
    std::uint64_t states = 0;
    std::uint64_t transitions = 0;
    auto const seconds_by = [&](unsigned threads) {
        RunOptions options = counting(threads);
        options.keep_transitions = state.range(1) != 0;
        StateSpace::ConfigurationTables tables(*compiled.machine);
        Clock::time_point const begin = Clock::now();
        StateSpace::Run const run = StateSpace::run(tables, options);
        states = run.state_count;
        transitions = run.transition_count;
        return seconds_since(begin);
    };
    std::vector<double> speeds;
    std::vector<double> two_to_one;
    std::vector<double> eight_to_two;
    std::vector<double> of_probing;
    std::vector<double> two_of_probing;
    for (auto _ : state) {
        double const one = seconds_by(1);
        double const two = seconds_by(2);
        double const eight = seconds_by(8);
        Clock::time_point const begin = Clock::now();
        Probing set(states);
        if (set.look_up(transitions) != states) {
            state.SkipWithError("there are not as many keys as states");
            return;
        }
        double const probing = seconds_since(begin);
        speeds.push_back(static_cast<double>(transitions) / one);
        two_to_one.push_back(one / two);
        eight_to_two.push_back(two / eight);
        of_probing.push_back(probing / one);
        two_of_probing.push_back(probing / two);
    }
    auto const median = [](std::vector<double>& all) {
        std::sort(all.begin(), all.end());
        return all[all.size() / 2];
    };
    state.counters["transitions/s"] = median(speeds);
    state.counters["two to one"] = median(two_to_one);
    state.counters["eight to two"] = median(eight_to_two);
    state.counters["of probing"] = median(of_probing);
    state.counters["two of probing"] = median(two_of_probing);
}
BENCHMARK(philosophers_in_turn)
    ->ArgsProduct({{9, 10, 11}, {0, 1}})
    ->Iterations(7)
    ->Unit(benchmark::kMillisecond);

/// Arguments: leaves, threads. As many philosophers as there are forks, up to a million states.
void growth_with_components(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)) / 2);
    measure_machine(state, model.start, model.source,
                    counting(static_cast<unsigned>(state.range(1)), 1'000'000));
}
BENCHMARK(growth_with_components)
    ->ArgsProduct({{10, 20, 50, 100, 200, 500, 1000}, {1, 2}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/// Argument: leaves, more than one word has room for. The same run, not counting compilation, and in turn with it the one that keeps all words of
/// each state. `of plain` is the run's speed to that of the other one.
void wide_states_to_plain(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)) / 2);
    auto const compiled =
        StateSpace::compile(StateSpace::make_term_graph(model.start, model.source), model.source);
    RunOptions const options = counting(1, 1'000'000);
    StateSpace::Cut plain;
    plain.most_plain_words = ~std::uint32_t{0};
    using Clock = std::chrono::steady_clock;
    Clock::duration as_kept{};
    Clock::duration as_plain{};
    auto const measure = [&](StateSpace::Cut const& cut, Clock::duration& time,
                             std::string const& name) {
        StateSpace::ConfigurationTables tables(*compiled.machine);
        Clock::time_point const begin = Clock::now();
        StateSpace::Run const run = StateSpace::run(tables, options, cut);
        time += Clock::now() - begin;
        state.counters["words"] = tables.width(); // states that are only counted tell nothing
        state.counters["bytes/state" + name] =
            static_cast<double>(run.state_bytes) / static_cast<double>(run.state_count);
        return run.transition_count;
    };
    std::uint64_t transitions = 0;
    for (auto _ : state) {
        transitions += measure({}, as_kept, "");
        measure(plain, as_plain, ", plain");
    }
    state.counters["transitions/s"] =
        static_cast<double>(transitions) / std::chrono::duration<double>(as_kept).count();
    state.counters["of plain"] =
        std::chrono::duration<double>(as_plain) / std::chrono::duration<double>(as_kept);
}
BENCHMARK(wide_states_to_plain)
    ->Arg(50)
    ->Arg(100)
    ->Arg(200)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

/// Argument: states, of eleven philosophers.
void growth_with_states(benchmark::State& state) {
    Philosophers const model(11);
    measure_machine(state, model.start, model.source,
                    counting(1, static_cast<StateSpace::StateNumber>(state.range(0))));
}
BENCHMARK(growth_with_states)
    ->RangeMultiplier(10)
    ->Range(10'000, 10'000'000)
    ->Unit(benchmark::kMillisecond);

/// Argument: leaves, all different.
void compile_philosophers(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)) / 2);
    measure_compilation(state, model.start, model.source);
}
BENCHMARK(compile_philosophers)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

/// Argument: leaves, all one but for a renaming each.
void compile_renamed(benchmark::State& state) {
    auto const count = static_cast<unsigned>(state.range(0));
    NamedProcessSource source;
    ProcessPointer const node = two_states(source, 0);
    OwningArray<ProcessPointer> ring(count);
    for (unsigned i = 0; i < count; ++i) {
        FixedArray<std::pair<unsigned, unsigned>> pairs(2);
        pairs[0] = {first_visible_event, first_visible_event + 2 + i};
        pairs[1] = {first_visible_event + 1, first_visible_event + 2 + (i + 1) % count};
        ring[i] = new OperatorProcess(new RenameOperator(pairs), node);
    }
    measure_compilation(state, new InterleaveProcess(ring), source);
}
BENCHMARK(compile_renamed)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Calder::Benchmarks
