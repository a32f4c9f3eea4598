#include "tests/oracle/library_term.h"

#include "csp/alphabetised_parallel_operator.h"
#include "csp/chaos_process.h"
#include "csp/event_set_prefix_process.h"
#include "csp/exception_operator.h"
#include "csp/external_choice_process.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/hide_operator.h"
#include "csp/interleave_process.h"
#include "csp/internal_choice_process.h"
#include "csp/interrupt_process.h"
#include "csp/linked_parallel_operator.h"
#include "csp/prefix_process.h"
#include "csp/project_operator.h"
#include "csp/rename_operator.h"
#include "csp/run_process.h"
#include "csp/sequential_composition_process.h"
#include "csp/sliding_choice_process.h"
#include "csp/synchronising_external_choice_operator.h"
#include "csp/synchronising_interrupt_operator.h"

namespace Calder::Oracle {

namespace {

using namespace ProcessCompiler;
using namespace ProcessCompiler::CSP;

BitSet bits_of(Events const& events) {
    BitSet bits;
    for (unsigned const event : events) {
        bits.insert(event);
    }
    return bits;
}

std::vector<BitSet> all_bits_of(std::vector<Events> const& alphabets) {
    std::vector<BitSet> all;
    for (Events const& alphabet : alphabets) {
        all.push_back(bits_of(alphabet));
    }
    return all;
}

FixedArray<std::pair<unsigned, unsigned>> array_of(Pairs const& pairs) {
    FixedArray<std::pair<unsigned, unsigned>> array(pairs.size());
    std::copy(pairs.begin(), pairs.end(), array.begin());
    return array;
}

} // namespace

ProcessPointer library_term(Term const& term, NamedProcessSource& source) {
    OwningArray<ProcessPointer> arguments(term.arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        arguments[i] = library_term(*term.arguments[i], source);
    }
    BitSet const events = bits_of(term.events);
    auto const applied = [&](OperatorPointer const& op) -> ProcessPointer {
        return new OperatorProcess(op, arguments);
    };
    switch (term.kind) {
    case Kind::named: return source.reference(term.name);
    case Kind::prefix: return new PrefixProcess(*term.events.begin(), arguments[0]);
    case Kind::event_set_prefix: return new EventSetPrefixProcess(events, arguments[0]);
    case Kind::external_choice: return new ExternalChoiceProcess(arguments);
    case Kind::internal_choice: return new InternalChoiceProcess(arguments);
    case Kind::sliding_choice: return new SlidingChoiceProcess(arguments[0], arguments[1]);
    case Kind::sequential_composition:
        return new SequentialCompositionProcess(arguments[0], arguments[1]);
    case Kind::interrupt: return new InterruptProcess(arguments[0], arguments[1]);
    case Kind::interleave: return new InterleaveProcess(arguments);
    case Kind::run: return new RunProcess(events);
    case Kind::chaos: return new ChaosProcess(events);
    case Kind::generalised_parallel: return applied(new GeneralisedParallelOperator(events));
    case Kind::alphabetised_parallel:
        return applied(new AlphabetisedParallelOperator(all_bits_of(term.alphabets)));
    case Kind::linked_parallel: return applied(new LinkedParallelOperator(array_of(term.pairs)));
    case Kind::hiding: return applied(new HideOperator(events));
    case Kind::projection: return applied(new ProjectOperator(events));
    case Kind::renaming: return applied(new RenameOperator(array_of(term.pairs)));
    case Kind::exception: return applied(new ExceptionOperator(events));
    case Kind::synchronising_choice:
        return applied(new SynchronisingExternalChoiceOperator(events));
    case Kind::synchronising_interrupt: return applied(new SynchronisingInterruptOperator(events));
    }
    return {};
}

ProcessPointer library_model(Model const& model, NamedProcessSource& source) {
    for (auto const& [name, body] : model.definitions) {
        source.define(name, library_term(*body, source));
    }
    return library_term(*model.term, source);
}

} // namespace Calder::Oracle
