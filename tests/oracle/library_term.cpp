#include "tests/oracle/library_term.h"

#include "tests/csp/terms.h"

namespace Calder::Oracle {

namespace {

using namespace ProcessCompiler;
using namespace ProcessCompiler::CSP;

// Every construct of the library, and names.
static_assert(std::size(kinds) == process_shapes.size() + operator_shapes.size() + 1);

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

CSP::Pairs array_of(Pairs const& pairs) {
    CSP::Pairs array(pairs.size());
    std::copy(pairs.begin(), pairs.end(), array.begin());
    return array;
}

} // namespace

ProcessPointer library_term(Term const& term, NamedProcessSource& source) {
    Terms of(term.arguments.size());
    for (std::size_t i = 0; i < of.size(); ++i) {
        of[i] = library_term(*term.arguments[i], source);
    }
    BitSet const events = bits_of(term.events);
    switch (term.kind) {
    case Kind::named: return source.reference(term.name);
    case Kind::prefix: return CSP::prefix(*term.events.begin(), of[0]);
    case Kind::event_set_prefix: return set_prefix(events, of[0]);
    case Kind::external_choice: return external(of);
    case Kind::internal_choice: return internal(of);
    case Kind::sliding_choice: return sliding(of[0], of[1]);
    case Kind::sequential_composition: return sequence(of[0], of[1]);
    case Kind::interrupt: return CSP::interrupt(of[0], of[1]);
    case Kind::interleave: return CSP::interleave(of);
    case Kind::run: return CSP::run(events);
    case Kind::chaos: return CSP::chaos(events);
    case Kind::generalised_parallel: return parallel(events, of);
    case Kind::alphabetised_parallel: return alphabetised(all_bits_of(term.alphabets), of);
    case Kind::linked_parallel: return linked(array_of(term.pairs), of[0], of[1]);
    case Kind::hiding: return hide(of[0], events);
    case Kind::projection: return project(of[0], events);
    case Kind::renaming: return rename(of[0], array_of(term.pairs));
    case Kind::exception: return CSP::exception(events, of[0], of[1]);
    case Kind::synchronising_choice: return sync_choice(events, of);
    case Kind::synchronising_interrupt: return sync_interrupt(events, of[0], of[1]);
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
