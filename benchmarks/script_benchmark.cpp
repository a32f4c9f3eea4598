#include "benchmarks/measurement.h"
#include "script/script.h"

#include <memory>
#include <string>

namespace Calder::Benchmarks {
namespace {

std::unique_ptr<Script::Script> script_of(std::string const& text) {
    return Script::read_script(text).script;
}

/// A counter in two directions, one instance for each place of a square.
std::string grid(std::int64_t side) {
    return "N = " + std::to_string(side) +
           "\nchannel right, up, left, down\n"
           "COUNTER(i, j) = i < N-1 & right -> COUNTER(i+1, j) [] j < N-1 & up -> COUNTER(i, j+1)\n"
           "             [] i > 0 & left -> COUNTER(i-1, j) [] j > 0 & down -> COUNTER(i, j-1)\n"
           "GRID = COUNTER(0, 0)\n";
}

/// The same, every instance with a name of its own.
std::string grid_written_out(std::int64_t side) {
    auto const name = [](std::int64_t i, std::int64_t j) {
        return "C_" + std::to_string(i) + "_" + std::to_string(j);
    };
    auto const step = [](char const* event, bool is_there, std::string const& next) {
        return is_there ? std::string(event) + " -> " + next : std::string("STOP");
    };
    std::string text = "channel right, up, left, down\n";
    for (std::int64_t i = 0; i < side; ++i) {
        for (std::int64_t j = 0; j < side; ++j) {
            text += name(i, j) + " = " + step("right", i < side - 1, name(i + 1, j)) + " [] " +
                    step("up", j < side - 1, name(i, j + 1)) + " [] " +
                    step("left", i > 0, name(i - 1, j)) + " [] " +
                    step("down", j > 0, name(i, j - 1)) + "\n";
        }
    }
    return text + "GRID = C_0_0\n";
}

/// Reading is not measured: of instances, exploring makes them.
void explore_grid(benchmark::State& state, std::string const& text) {
    for (auto _ : state) {
        state.PauseTiming();
        auto script = script_of(text);
        state.ResumeTiming();
        auto const found =
            StateSpace::explore(script->definitions().back().term, script->processes());
        if (found.lts.state_count() != state.range(0) * state.range(0)) {
            state.SkipWithError("another number of states");
        }
        state.PauseTiming();
        script.reset();
        state.ResumeTiming();
    }
}

void grid_of_instances(benchmark::State& state) {
    explore_grid(state, grid(state.range(0)));
}
BENCHMARK(grid_of_instances)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);

void grid_of_names(benchmark::State& state) {
    explore_grid(state, grid_written_out(state.range(0)));
}
BENCHMARK(grid_of_names)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);

/// From the text to the first state of the machine.
void philosophers_until_the_machine_runs(benchmark::State& state) {
    std::string const text =
        "N = " + std::to_string(state.range(0)) +
        "\nSeat = {0..N-1}\n"
        "channel think, eat : Seat\n"
        "channel take, put  : Seat.{left, right}\n"
        "before(i) = (i + N - 1) % N\n"
        "PHIL(i) = think.i -> take.i.left -> take.i.right -> eat.i -> put.i.left -> put.i.right\n"
        "       -> PHIL(i)\n"
        "FORK(f) = take.f.left -> put.f.left -> FORK(f)\n"
        "       [] take.before(f).right -> put.before(f).right -> FORK(f)\n"
        "TABLE = (||| i : Seat @ PHIL(i)) [| {| take, put |} |] (||| f : Seat @ FORK(f))\n";
    for (auto _ : state) {
        auto const script = script_of(text);
        StateSpace::RunOptions options;
        options.max_states = 1;
        auto const found = StateSpace::explore_by_machine(script->definitions().back().term,
                                                          script->processes(), options);
        if (!found.machine) {
            state.SkipWithError("no machine");
        }
    }
}
BENCHMARK(philosophers_until_the_machine_runs)->Arg(1000)->Unit(benchmark::kMillisecond);

/// Calls of a function of values: fib(20) takes 21,891 of them.
void calls_of_values(benchmark::State& state) {
    std::string const text = "fib(n) = if n < 2 then n else fib(n-1) + fib(n-2)\n"
                             "channel a\nP = fib(20) == 6765 & a -> P\n";
    for (auto _ : state) {
        benchmark::DoNotOptimize(script_of(text));
    }
    state.SetItemsProcessed(state.iterations() * 21'891);
}
BENCHMARK(calls_of_values)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Calder::Benchmarks
