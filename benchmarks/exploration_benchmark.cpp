#include "benchmarks/measurement.h"
#include "benchmarks/terms.h"

namespace Calder::Benchmarks {
namespace {

/// A term as deep as it is long, one transition a state.
void long_chain(benchmark::State& state) {
    measure_exploration(state, chain(state.range(0), stop()), NamedProcessSource());
}
BENCHMARK(long_chain)->Arg(1'000)->Arg(100'000);

/// One state with many transitions.
void wide_choice(benchmark::State& state) {
    OwningArray<ProcessPointer> arguments(static_cast<std::size_t>(state.range(0)));
    unsigned event = first_visible_event;
    for (ProcessPointer& argument : arguments) {
        argument = prefix(event++, stop());
    }
    ProcessPointer const choice(new ExternalChoiceProcess(arguments));
    measure_exploration(state, choice, NamedProcessSource());
}
BENCHMARK(wide_choice)->Arg(1'000)->Arg(100'000);

/// A choice in a choice in a choice …, and a silent step at the bottom: each of its steps makes all
/// the choices anew.
void deep_choices(benchmark::State& state) {
    ProcessPointer nest = prefix(tau, prefix(tau, prefix(tau, stop())));
    for (std::int64_t depth = 0; depth < state.range(0); ++depth) {
        nest = new ExternalChoiceProcess(
            OwningArray<ProcessPointer>{prefix(first_visible_event, stop()), nest});
        nest->hash_code();
    }
    measure_exploration(state, nest, NamedProcessSource());
}
BENCHMARK(deep_choices)->Arg(10)->Arg(1'000);

} // namespace
} // namespace Calder::Benchmarks
