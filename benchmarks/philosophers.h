#pragma once

#include "benchmarks/terms.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/interleave_process.h"
#include "process_compiler/operator_process.h"

#include <string>

namespace Calder::Benchmarks {

/// Dining philosophers, as in examples/philosophers.csp: philosophers side by side, forks side by
/// side, synchronised on taking and putting down.
class Philosophers {
  public:
    explicit Philosophers(unsigned count) : m_count(count) {
        OwningArray<ProcessPointer> philosophers(count);
        OwningArray<ProcessPointer> forks(count);
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
        source.define(name, new ExternalChoiceProcess(OwningArray<ProcessPointer>{
                                prefix(take(i, 0), prefix(put(i, 0), again)),
                                prefix(take(before, 1), prefix(put(before, 1), again))}));
        return again;
    }

    unsigned m_count;
    BitSet m_synchronised;
};

} // namespace Calder::Benchmarks
