#pragma once

#include "csp/constructs.h"
#include "process_compiler/named_process_source.h"
#include "tests/support/printing.h"

#include <string>
#include <utility>
#include <vector>

/// How the tests of constructs write their terms: `sliding(prefix(a, P), Q)`.
namespace Calder::ProcessCompiler::CSP {

using Terms = OwningArray<ProcessPointer>;
using Sets = std::vector<BitSet>;
using Pairs = FixedArray<std::pair<unsigned, unsigned>>;
using Term = ProcessPointer const&;

constexpr unsigned a = 3;
constexpr unsigned b = 4;
constexpr unsigned c = 5;

/// Knows a, b and c.
inline Session& session() {
    static Session declared;
    static bool const done = declared.declare_event("a") == a && declared.declare_event("b") == b &&
                             declared.declare_event("c") == c;
    return done ? declared : (std::abort(), declared);
}

// clang-format off
inline ProcessPointer prefix(unsigned event, Term p) { return new PrefixProcess(event, p); }
inline ProcessPointer set_prefix(BitSet const& events, Term p) { return new EventSetPrefixProcess(events, p); }
inline ProcessPointer external(Terms const& of) { return new ExternalChoiceProcess(of); }
inline ProcessPointer internal(Terms const& of) { return new InternalChoiceProcess(of); }
inline ProcessPointer interleave(Terms const& of) { return new InterleaveProcess(of); }
inline ProcessPointer sliding(Term p, Term q) { return new SlidingChoiceProcess(p, q); }
inline ProcessPointer sequence(Term p, Term q) { return new SequentialCompositionProcess(p, q); }
inline ProcessPointer interrupt(Term p, Term q) { return new InterruptProcess(p, q); }
inline ProcessPointer run(BitSet const& events) { return new RunProcess(events); }
inline ProcessPointer chaos(BitSet const& events) { return new ChaosProcess(events); }

inline ProcessPointer apply(OperatorPointer const& op, Terms const& to) { return new OperatorProcess(op, to); }
inline ProcessPointer parallel(BitSet const& on, Terms const& of) { return apply(new GeneralisedParallelOperator(on), of); }
inline ProcessPointer alphabetised(Sets const& sets, Terms const& of) { return apply(new AlphabetisedParallelOperator(sets), of); }
inline ProcessPointer linked(Pairs const& links, Term p, Term q) { return apply(new LinkedParallelOperator(links), {p, q}); }
inline ProcessPointer hide(Term p, BitSet const& events) { return apply(new HideOperator(events), {p}); }
inline ProcessPointer project(Term p, BitSet const& events) { return apply(new ProjectOperator(events), {p}); }
inline ProcessPointer rename(Term p, Pairs const& pairs) { return apply(new RenameOperator(pairs), {p}); }
inline ProcessPointer exception(BitSet const& events, Term p, Term q) { return apply(new ExceptionOperator(events), {p, q}); }
inline ProcessPointer sync_choice(BitSet const& events, Terms const& of) { return apply(new SynchronisingExternalChoiceOperator(events), of); }
inline ProcessPointer sync_interrupt(BitSet const& events, Term p, Term q) { return apply(new SynchronisingInterruptOperator(events), {p, q}); }

/// A construct over the first of two operands that it has room for.
struct Construct {
    char const* name;
    unsigned operands;
    ProcessPointer (*of)(Term, Term);
};

/// All of them: what holds for every construct is asked of these.
inline Construct const constructs[] = {
    {"prefix", 1, [](Term p, Term) { return prefix(a, p); }},
    {"event-set prefix", 1, [](Term p, Term) { return set_prefix({a}, p); }},
    {"external choice", 2, [](Term p, Term q) { return external({p, q}); }},
    {"internal choice", 2, [](Term p, Term q) { return internal({p, q}); }},
    {"interrupt", 2, [](Term p, Term q) { return interrupt(p, q); }},
    {"interleave", 2, [](Term p, Term q) { return interleave({p, q}); }},
    {"sequential composition", 2, [](Term p, Term q) { return sequence(p, q); }},
    {"sliding choice", 2, [](Term p, Term q) { return sliding(p, q); }},
    {"chaos", 0, [](Term, Term) { return chaos({a}); }},
    {"run", 0, [](Term, Term) { return run({a}); }},
    {"alphabetised parallel", 2, [](Term p, Term q) { return alphabetised({{a}, {b}}, {p, q}); }},
    {"exception", 2, [](Term p, Term q) { return exception({a}, p, q); }},
    {"generalised parallel", 2, [](Term p, Term q) { return parallel({a}, {p, q}); }},
    {"linked parallel", 2, [](Term p, Term q) { return linked({{a, b}}, p, q); }},
    {"hide", 1, [](Term p, Term) { return hide(p, {a}); }},
    {"rename", 1, [](Term p, Term) { return rename(p, {{a, b}}); }},
    {"synchronising external choice", 2, [](Term p, Term q) { return sync_choice({a}, {p, q}); }},
    {"synchronising interrupt", 2, [](Term p, Term q) { return sync_interrupt({a}, p, q); }},
    {"project", 1, [](Term p, Term) { return project(p, {a}); }},
};
// clang-format on
static_assert(std::size(constructs) == process_shapes.size() + operator_shapes.size());

inline NamedProcessSource source;
inline ProcessPointer const P = source.reference("P");
inline ProcessPointer const Q = source.reference("Q");
inline ProcessPointer const STOP(external({}));
inline ProcessPointer const SKIP(interleave({}));

inline std::string text(Process const& term, bool abbreviate = false) {
    return Testing::text_of(session(), term, abbreviate);
}

inline std::string name_of(unsigned event) {
    return event == no_event ? "-" : session().event_object(event)->name();
}

} // namespace Calder::ProcessCompiler::CSP
