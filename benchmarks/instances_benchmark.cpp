#include "benchmarks/measurement.h"
#include "benchmarks/terms.h"
#include "process_compiler/guarded_maker.h"

namespace Calder::Benchmarks {
namespace {

/// COUNT(n) = a -> COUNT(n + 1), the last one COUNT(last) = a -> COUNT(0).
class CounterMaker : public ProcessMaker {
  public:
    CounterMaker(NamedProcessSource& source, std::int64_t size) : m_source(source), m_size(size) {}

    ProcessPointer make(unsigned number) override {
        bool const is_last = std::int64_t{number} + 1 == m_size;
        return prefix(first_visible_event,
                      is_last ? m_source.references().front() : m_source.add_reference());
    }
    std::string name(unsigned number) const override {
        return "COUNT(" + std::to_string(number) + ")";
    }

  private:
    NamedProcessSource& m_source;
    std::int64_t m_size;
};

void explore_all(benchmark::State& state, NamedProcessSource const& source) {
    auto const found = StateSpace::explore(source.references().front(), source);
    if (found.lts.state_count() != state.range(0)) {
        state.SkipWithError("another number of states");
    }
    state.counters["bytes/state"] =
        static_cast<double>(bytes_in_use()) / static_cast<double>(state.range(0));
}

/// The terms and their exploration, as of a script with parameters.
void counter_made_by_the_way(benchmark::State& state) {
    for (auto _ : state) {
        NamedProcessSource source;
        CounterMaker maker(source, state.range(0));
        GuardedMaker guarded(source, maker);
        source.set_maker(&guarded);
        source.add_reference();
        explore_all(state, source);
    }
}
BENCHMARK(counter_made_by_the_way)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

/// The same as of a script that defines a million names.
void counter_written_out(benchmark::State& state) {
    for (auto _ : state) {
        NamedProcessSource source;
        for (std::int64_t number = 0; number < state.range(0); ++number) {
            std::string const name = "COUNT" + std::to_string(number);
            std::string const next = "COUNT" + std::to_string((number + 1) % state.range(0));
            source.reference(name);
            source.define(name, prefix(first_visible_event, source.reference(next)));
        }
        if (!find_unguarded_recursion(source).empty()) {
            state.SkipWithError("there is recursion without a guard");
        }
        explore_all(state, source);
    }
}
BENCHMARK(counter_written_out)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

/// References alone: time and bytes of each.
void references(benchmark::State& state) {
    for (auto _ : state) {
        std::uint64_t const before = bytes_in_use();
        NamedProcessSource source;
        for (std::int64_t number = 0; number < state.range(0); ++number) {
            source.add_reference();
        }
        state.counters["bytes/reference"] =
            static_cast<double>(bytes_in_use() - before) / static_cast<double>(state.range(0));
    }
}
BENCHMARK(references)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace Calder::Benchmarks
