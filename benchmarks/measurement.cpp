#include "benchmarks/measurement.h"

#include <cstdlib>
#include <new>

namespace {

std::uint64_t allocation_count = 0;

} // namespace

void* operator new(std::size_t size) {
    ++allocation_count;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
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

void measure_exploration(benchmark::State& state, ProcessPointer const& start,
                         NamedProcessSource const& source) {
    std::uint64_t transitions = 0;
    std::uint64_t const before = allocations();
    for (auto _ : state) {
        StateSpace::Exploration const exploration = StateSpace::explore(start, source);
        transitions += exploration.lts.transition_count();
        state.counters["states"] = exploration.lts.state_count();
        state.counters["transitions"] = static_cast<double>(exploration.lts.transition_count());
    }
    report_transitions(state, transitions, allocations() - before);
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
