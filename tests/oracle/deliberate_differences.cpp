#include "tests/oracle/deliberate_differences.h"

#include <algorithm>

namespace Calder::Oracle {

namespace {

constexpr unsigned tick = 2;
constexpr unsigned a = 3;
constexpr unsigned b = 4;

TermPointer skip() {
    return make(Kind::interleave, {});
}

/// Compiled to formats, whatever the term is: an interleaving of one.
TermPointer compiled(TermPointer const& term) {
    return make(Kind::interleave, {term});
}

/// `term` after a tick that terminates nothing.
TermPointer after_tick(TermPointer const& term) {
    return make(Kind::event_set_prefix, {term}, {tick});
}

TermPointer renamed(unsigned from, unsigned to, TermPointer const& term) {
    Term renaming{Kind::renaming, {}, {term}};
    renaming.pairs.emplace_back(from, to);
    return std::make_shared<Term>(renaming);
}

bool is_exception_on_tick(Term const& term) {
    return term.kind == Kind::exception && term.events.count(tick) != 0;
}

bool renames_tick(Term const& term) {
    return term.kind == Kind::renaming &&
           std::any_of(term.pairs.begin(), term.pairs.end(),
                       [](auto const& pair) { return pair.first == tick; });
}

bool renames_to_tick(Term const& term) {
    return term.kind == Kind::renaming &&
           std::any_of(term.pairs.begin(), term.pairs.end(),
                       [](auto const& pair) { return pair.second == tick; });
}

bool has_tick_among_its_events(Term const& term) {
    return (term.kind == Kind::event_set_prefix || term.kind == Kind::run ||
            term.kind == Kind::chaos) &&
           term.events.count(tick) != 0;
}

bool is_at_any(Term const& term) {
    auto const& all = deliberate_differences();
    return std::any_of(all.begin(), all.end(),
                       [&](DeliberateDifference const& each) { return each.is_at(term); }) ||
           std::any_of(term.arguments.begin(), term.arguments.end(),
                       [](TermPointer const& argument) { return is_at_any(*argument); });
}

} // namespace

std::vector<DeliberateDifference> const& deliberate_differences() {
    static std::vector<DeliberateDifference> const all{
        {"exception", "tick is one of the exceptions",
         "tick terminates, as any tick of the first argument",
         "tick is an event like any other: control passes to the second argument",
         is_exception_on_tick,
         make(Kind::exception, {compiled(skip()), make(Kind::prefix, {stop()}, {a})}, {tick})},
        {"renaming", "a pair renames tick", "tick is left alone, and terminates",
         "tick is renamed like any other event", renames_tick, renamed(tick, a, skip())},
        {"renaming", "a pair renames an event to tick",
         "constructs around it take the tick for the end: STOP follows",
         "what stands behind the tick goes on", renames_to_tick,
         compiled(renamed(a, tick, make(Kind::prefix, {make(Kind::prefix, {stop()}, {b})}, {a})))},
        {"prefix over a set, RUN, CHAOS", "tick is in the set",
         "constructs around it take the tick for the end: STOP follows",
         "what stands behind the tick goes on", has_tick_among_its_events,
         compiled(after_tick(make(Kind::prefix, {stop()}, {a})))},
    };
    return all;
}

bool has_deliberate_difference(Model const& model) {
    return is_at_any(*model.term) ||
           std::any_of(model.definitions.begin(), model.definitions.end(),
                       [](auto const& definition) { return is_at_any(*definition.second); });
}

} // namespace Calder::Oracle
