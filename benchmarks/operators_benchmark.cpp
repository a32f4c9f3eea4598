#include "benchmarks/measurement.h"
#include "benchmarks/terms.h"
#include "csp/alphabetised_parallel_operator.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/interleave_process.h"
#include "csp/operator_helpers.h"
#include "csp/rename_operator.h"

namespace Calder::Benchmarks {
namespace {

using Arguments = OwningArray<ProcessPointer>;

/// Dining philosophers, as examples/generate writes them: philosophers side by side, forks side by
/// side, synchronised on taking and putting down.
class Philosophers {
  public:
    explicit Philosophers(unsigned count) : m_count(count) {
        Arguments philosophers(count);
        Arguments forks(count);
        for (unsigned i = 0; i < count; ++i) {
            philosophers[i] = philosopher(i);
            forks[i] = fork(i);
        }
        start =
            new OperatorProcess(new GeneralisedParallelOperator(m_synchronised),
                                new InterleaveProcess(philosophers), new InterleaveProcess(forks));
    }

    NamedProcessSource source;
    ProcessPointer start;

  private:
    unsigned event(unsigned kind, unsigned philosopher, unsigned side) const {
        return first_visible_event + (kind * m_count + philosopher) * 2 + side;
    }
    unsigned take(unsigned philosopher, unsigned side) {
        m_synchronised.insert(event(1, philosopher, side));
        return event(1, philosopher, side);
    }
    unsigned put(unsigned philosopher, unsigned side) {
        m_synchronised.insert(event(2, philosopher, side));
        return event(2, philosopher, side);
    }

    ProcessPointer philosopher(unsigned i) {
        std::string const name = "PHIL" + std::to_string(i);
        ProcessPointer body = source.reference(name);
        for (unsigned const next :
             {put(i, 1), put(i, 0), event(0, i, 1), take(i, 1), take(i, 0), event(0, i, 0)}) {
            body = prefix(next, body);
        }
        source.define(name, body);
        return source.reference(name);
    }

    /// Fork i is on the left of philosopher i and on the right of the one before.
    ProcessPointer fork(unsigned i) {
        std::string const name = "FORK" + std::to_string(i);
        unsigned const before = (i + m_count - 1) % m_count;
        ProcessPointer const again = source.reference(name);
        source.define(name, new ExternalChoiceProcess(
                                Arguments{prefix(take(i, 0), prefix(put(i, 0), again)),
                                          prefix(take(before, 1), prefix(put(before, 1), again))}));
        return again;
    }

    unsigned m_count;
    BitSet m_synchronised;
};

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
