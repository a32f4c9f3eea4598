#pragma once

#include "csp/external_choice_process.h"
#include "csp/prefix_process.h"
#include "process_compiler/named_process_source.h"

namespace Calder::Benchmarks {

using namespace ProcessCompiler;
using namespace ProcessCompiler::CSP;

inline ProcessPointer stop() {
    return new ExternalChoiceProcess(0U);
}

inline ProcessPointer prefix(unsigned event, ProcessPointer const& next) {
    return new PrefixProcess(event, next);
}

/// `length` prefixes before `end`. Hashed from the inside out, so that no later hash is deep.
inline ProcessPointer chain(std::int64_t length, ProcessPointer end) {
    for (; length > 0; --length) {
        end = prefix(first_visible_event + static_cast<unsigned>(length % 2), end);
        end->hash_code();
    }
    return end;
}

/// An event and another one, for ever: two states.
inline ProcessPointer two_states(NamedProcessSource& source, unsigned number) {
    std::string const name = "P" + std::to_string(number);
    unsigned const event = first_visible_event + 2 * number;
    source.define(name, prefix(event, prefix(event + 1, source.reference(name))));
    return source.reference(name);
}

} // namespace Calder::Benchmarks
