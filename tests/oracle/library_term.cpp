#include "tests/oracle/library_term.h"

#include "csp/chaos_process.h"
#include "csp/event_set_prefix_process.h"
#include "csp/external_choice_process.h"
#include "csp/interleave_process.h"
#include "csp/internal_choice_process.h"
#include "csp/interrupt_process.h"
#include "csp/prefix_process.h"
#include "csp/run_process.h"
#include "csp/sequential_composition_process.h"
#include "csp/sliding_choice_process.h"

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

} // namespace

ProcessPointer library_term(Term const& term, NamedProcessSource& source) {
    OwningArray<ProcessPointer> arguments(term.arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        arguments[i] = library_term(*term.arguments[i], source);
    }
    BitSet const events = bits_of(term.events);
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
