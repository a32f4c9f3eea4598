#include "benchmarks/measurement.h"
#include "benchmarks/philosophers.h"
#include "csp/alphabetised_parallel_operator.h"
#include "csp/operator_helpers.h"
#include "csp/rename_operator.h"

namespace Calder::Benchmarks {
namespace {

using Arguments = OwningArray<ProcessPointer>;

void philosophers(benchmark::State& state) {
    Philosophers const model(static_cast<unsigned>(state.range(0)));
    measure_exploration(state, model.start, model.source);
}
BENCHMARK(philosophers)->DenseRange(5, 8)->Unit(benchmark::kMillisecond);

/// The product alone: k arguments with m successors each on one event.
void synchronisation_product(benchmark::State& state) {
    Arguments const arguments(static_cast<std::size_t>(state.range(0)));
    OwningArray<SyncVector> vectors(arguments.size());
    for (SyncVector& vector : vectors) {
        for (std::int64_t successor = 0; successor < state.range(1); ++successor) {
            vector.emplace_back(first_visible_event, stop());
        }
    }
    OperatorPointer const op(new GeneralisedParallelOperator(BitSet{}));
    std::uint64_t transitions = 0;
    std::uint64_t const before = allocations();
    for (auto _ : state) {
        cart_product_synchronised_events(
            {first_visible_event}, vectors, arguments,
            [&transitions](unsigned, ProcessPointer const&) {
                ++transitions;
                return true;
            },
            op);
    }
    report_transitions(state, transitions, allocations() - before);
}
BENCHMARK(synchronisation_product)->Args({2, 30})->Args({4, 6})->Args({10, 2});

/// One event renamed to many.
void rename_to_many_targets(benchmark::State& state) {
    FixedArray<std::pair<unsigned, unsigned>> pairs(static_cast<std::size_t>(state.range(0)));
    unsigned target = first_visible_event + 1;
    for (auto& pair : pairs) {
        pair = {first_visible_event, target++};
    }
    ProcessPointer const term(
        new OperatorProcess(new RenameOperator(pairs), prefix(first_visible_event, stop())));
    measure_visit(state, term, NamedProcessSource());
}
BENCHMARK(rename_to_many_targets)->Arg(10)->Arg(1000);

/// Fifty arguments, each sharing an event with its neighbours only.
void sparse_alphabetised_parallel(benchmark::State& state) {
    auto const count = static_cast<unsigned>(state.range(0));
    std::vector<BitSet> alphabets;
    Arguments arguments(count);
    for (unsigned i = 0; i < count; ++i) {
        unsigned const left = first_visible_event + i;
        unsigned const right = first_visible_event + (i + 1) % count;
        alphabets.push_back(BitSet{left, right});
        arguments[i] =
            new ExternalChoiceProcess(Arguments{prefix(left, stop()), prefix(right, stop())});
    }
    ProcessPointer const term(
        new OperatorProcess(new AlphabetisedParallelOperator(alphabets), arguments));
    measure_visit(state, term, NamedProcessSource());
}
BENCHMARK(sparse_alphabetised_parallel)->Arg(50);

} // namespace
} // namespace Calder::Benchmarks
