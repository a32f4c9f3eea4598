#include "benchmarks/measurement.h"
#include "benchmarks/terms.h"
#include "csp/constructs.h"

namespace Calder::Benchmarks {
namespace {

BitSet many_events() {
    BitSet events;
    for (unsigned event = first_visible_event; event < first_visible_event + 64; ++event) {
        events.insert(event);
    }
    return events;
}

/// An argument with many transitions: a choice of prefixes over those events.
ProcessPointer busy(unsigned first_event) {
    OwningArray<ProcessPointer> arguments(64);
    for (ProcessPointer& argument : arguments) {
        argument = prefix(first_event++, stop());
    }
    return new ExternalChoiceProcess(arguments);
}

ProcessPointer skip() {
    return new InterleaveProcess(0U);
}

// The constructs alone: how long one transition takes, and what it allocates. The busy argument
// itself allocates nothing.

ProcessPointer prefix_term() {
    return prefix(first_visible_event, stop());
}
ProcessPointer event_set_prefix_term() {
    return new EventSetPrefixProcess(many_events(), stop());
}
ProcessPointer external_choice_term() {
    return busy(first_visible_event);
}
ProcessPointer external_choice_of_silent_steps_term() {
    ProcessPointer const silent(
        new InternalChoiceProcess(OwningArray<ProcessPointer>{stop(), stop(), stop(), stop()}));
    return new ExternalChoiceProcess(OwningArray<ProcessPointer>{silent, silent});
}
ProcessPointer internal_choice_term() {
    return new InternalChoiceProcess(OwningArray<ProcessPointer>{stop(), stop(), stop(), stop()});
}
ProcessPointer sliding_choice_term() {
    return new SlidingChoiceProcess(internal_choice_term(), stop());
}
ProcessPointer sequential_composition_term() {
    return new SequentialCompositionProcess(busy(first_visible_event), stop());
}
ProcessPointer interrupt_term() {
    return new InterruptProcess(busy(first_visible_event), stop());
}
ProcessPointer interleave_term() {
    return new InterleaveProcess(OwningArray<ProcessPointer>{
        busy(first_visible_event), busy(first_visible_event + 64), stop(), stop()});
}
ProcessPointer run_term() {
    return new RunProcess(many_events());
}
ProcessPointer chaos_term() {
    return new ChaosProcess(BitSet{first_visible_event});
}

/// The events that the two arguments of the operators share: half of what each can do.
BitSet shared_events() {
    BitSet events;
    for (unsigned event = first_visible_event + 32; event < first_visible_event + 64; ++event) {
        events.insert(event);
    }
    return events;
}

ProcessPointer applied(OperatorPointer const& op) {
    return new OperatorProcess(op, busy(first_visible_event), busy(first_visible_event + 32));
}
template <typename Made> ProcessPointer over_shared_events() {
    return applied(new Made(shared_events()));
}
/// Hiding and projection.
template <typename Made> ProcessPointer relabelling() {
    return new OperatorProcess(new Made(shared_events()), busy(first_visible_event));
}
ProcessPointer alphabetised_parallel_term() {
    return applied(
        new AlphabetisedParallelOperator(std::vector<BitSet>{many_events(), shared_events()}));
}
ProcessPointer linked_parallel_term() {
    LinkedParallelOperator::Links links(32);
    unsigned event = first_visible_event;
    for (auto& link : links) {
        link = {event, event + 32};
        ++event;
    }
    return applied(new LinkedParallelOperator(links));
}

void visit(benchmark::State& state, ProcessPointer (*term)()) {
    measure_visit(state, term(), NamedProcessSource());
}
BENCHMARK_CAPTURE(visit, prefix, prefix_term);
BENCHMARK_CAPTURE(visit, event_set_prefix, event_set_prefix_term);
BENCHMARK_CAPTURE(visit, external_choice, external_choice_term);
BENCHMARK_CAPTURE(visit, external_choice_of_silent_steps, external_choice_of_silent_steps_term);
BENCHMARK_CAPTURE(visit, internal_choice, internal_choice_term);
BENCHMARK_CAPTURE(visit, sliding_choice, sliding_choice_term);
BENCHMARK_CAPTURE(visit, sequential_composition, sequential_composition_term);
BENCHMARK_CAPTURE(visit, interrupt, interrupt_term);
BENCHMARK_CAPTURE(visit, interleave, interleave_term);
BENCHMARK_CAPTURE(visit, run, run_term);
BENCHMARK_CAPTURE(visit, chaos, chaos_term);
BENCHMARK_CAPTURE(visit, generalised_parallel, over_shared_events<GeneralisedParallelOperator>);
BENCHMARK_CAPTURE(visit, alphabetised_parallel, alphabetised_parallel_term);
BENCHMARK_CAPTURE(visit, linked_parallel, linked_parallel_term);
BENCHMARK_CAPTURE(visit, hide, relabelling<HideOperator>);
BENCHMARK_CAPTURE(visit, project, relabelling<ProjectOperator>);
BENCHMARK_CAPTURE(visit, exception, over_shared_events<ExceptionOperator>);
BENCHMARK_CAPTURE(visit, synchronising_external_choice,
                  over_shared_events<SynchronisingExternalChoiceOperator>);
BENCHMARK_CAPTURE(visit, synchronising_interrupt,
                  over_shared_events<SynchronisingInterruptOperator>);

// Whole state spaces in which one construct works hard.

/// k processes of two states side by side: 2^k states.
void interleaving_of_two_state_processes(benchmark::State& state) {
    NamedProcessSource source;
    OwningArray<ProcessPointer> arguments(static_cast<std::size_t>(state.range(0)));
    unsigned number = 0;
    for (ProcessPointer& argument : arguments) {
        argument = two_states(source, number++);
    }
    measure_exploration(state, new InterleaveProcess(arguments), source);
}
BENCHMARK(interleaving_of_two_state_processes)->Arg(10)->Arg(16)->Unit(benchmark::kMillisecond);

/// P0 /\ P1 /\ …, each able to take over.
void chain_of_interrupts(benchmark::State& state) {
    NamedProcessSource source;
    ProcessPointer whole = two_states(source, 0);
    for (std::int64_t number = 1; number < state.range(0); ++number) {
        whole = new InterruptProcess(whole, two_states(source, static_cast<unsigned>(number)));
    }
    measure_exploration(state, whole, source);
}
BENCHMARK(chain_of_interrupts)->Arg(10)->Arg(500)->Unit(benchmark::kMillisecond);

/// Long chains one after another.
void composition_of_long_chains(benchmark::State& state) {
    ProcessPointer whole = skip();
    for (int part = 0; part < 10; ++part) {
        whole = new SequentialCompositionProcess(chain(state.range(0), skip()), whole);
    }
    measure_exploration(state, whole, NamedProcessSource());
}
BENCHMARK(composition_of_long_chains)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Calder::Benchmarks
