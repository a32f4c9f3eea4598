#include "benchmarks/measurement.h"

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/reached_states.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::uint64_t allocation_count = 0;
std::uint64_t live_bytes = 0;
std::uint64_t most_live_bytes = 0;

void release(void* memory) noexcept {
    live_bytes -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) {
    ++allocation_count;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        live_bytes += malloc_usable_size(memory);
        most_live_bytes = std::max(most_live_bytes, live_bytes);
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

namespace Calder::Benchmarks {

using namespace ProcessCompiler;

void report_transitions(benchmark::State& state, std::uint64_t transitions,
                        std::uint64_t allocated) {
    state.counters["transitions/s"] =
        benchmark::Counter(static_cast<double>(transitions), benchmark::Counter::kIsRate);
    state.counters["allocs/transition"] =
        static_cast<double>(allocated) / static_cast<double>(transitions);
}

std::uint64_t allocations() {
    return allocation_count;
}

std::uint64_t bytes_in_use() {
    return live_bytes;
}

void measure_exploration(benchmark::State& state, ProcessPointer const& start,
                         NamedProcessSource const& source) {
    std::uint64_t transitions = 0;
    std::uint64_t const before = allocations();
    std::uint64_t const live_before = live_bytes;
    most_live_bytes = live_bytes;
    for (auto _ : state) {
        StateSpace::Exploration const exploration = StateSpace::explore(start, source);
        transitions += exploration.lts.transition_count();
        state.counters["states"] = exploration.lts.state_count();
        state.counters["bytes/state"] = static_cast<double>(most_live_bytes - live_before) /
                                        static_cast<double>(exploration.lts.state_count());
        state.counters["transitions"] = static_cast<double>(exploration.lts.transition_count());
    }
    report_transitions(state, transitions, allocations() - before);
}

void measure_machine(benchmark::State& state, ProcessPointer const& start,
                     NamedProcessSource const& source, StateSpace::RunOptions const& options) {
    std::uint64_t transitions = 0;
    for (auto _ : state) {
        auto const exploration = StateSpace::explore_by_machine(start, source, options);
        StateSpace::Run const& run = exploration.run;
        if (!exploration.machine) {
            state.SkipWithError("there is no machine");
            return;
        }
        transitions += run.transition_count;
        state.counters["states"] = run.state_count;
        state.counters["bytes/state"] =
            static_cast<double>(run.state_bytes) / static_cast<double>(run.state_count);
        state.counters["transitions"] = static_cast<double>(run.transition_count);
    }
    state.counters["transitions/s"] =
        benchmark::Counter(static_cast<double>(transitions), benchmark::Counter::kIsRate);
}

void measure_compilation(benchmark::State& state, ProcessPointer const& start,
                         NamedProcessSource const& source) {
    for (auto _ : state) {
        StateSpace::Compilation const compilation =
            StateSpace::compile(StateSpace::make_term_graph(start, source), source);
        if (!compilation.machine) {
            state.SkipWithError("there is no machine");
            return;
        }
        StateSpace::ConfigurationTables tables(*compilation.machine);
        StateSpace::ExplorationOptions const unlimited;
        StateSpace::SearchMonitor monitor(unlimited,
                                          StateSpace::SearchMonitor::longest_for_machines);
        tables.make_first(monitor);
        benchmark::DoNotOptimize(tables.width());
        state.counters["components"] = static_cast<double>(compilation.machine->leaves.size());
    }
}

void measure_visit(benchmark::State& state, ProcessPointer const& term,
                   NamedProcessSource const& source) {
    std::uint64_t transitions = 0;
    TransitionVisitor const count = [&transitions](unsigned, ProcessPointer const&) {
        ++transitions;
        return true;
    };
    std::uint64_t const before = allocations();
    for (auto _ : state) {
        term->visit_transitions(source, count);
    }
    report_transitions(state, transitions, allocations() - before);
}

} // namespace Calder::Benchmarks
