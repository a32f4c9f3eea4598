#include "script/term_host.h"

#include "process_compiler/recursion_watch.h"
#include "script/assertions.h"
#include "script/limits.h"
#include "values/text.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Calder::Script {

using ProcessCompiler::NamedProcess;
using ProcessCompiler::NamedProcessPointer;
using ProcessCompiler::ProcessPointer;
using Values::Expression;
using Values::Value;
using Values::ValueError;

NestedTerm::NestedTerm()
    : ValueError("the term is nested too deeply (more than " + std::to_string(nesting_limit) +
                 " levels)") {}

TermHost::TermHost(NameTable const& names, Values::Program const& program, CallGraph const& graph,
                   Values::ChannelTable const& channels,
                   ProcessCompiler::NamedProcessSource& source)
    : m_names(names), m_program(program), m_graph(graph), m_channels(channels), m_source(source) {}

TermHost::~TermHost() = default;

Value TermHost::construct(Expression const& expression, std::span<Value const> operands) {
    if (expression.number == keep_construct) {
        if (storage_of(operands[0]) != Storage::built) {
            return operands[0];
        }
        m_kept.push_back(m_built[number_of(operands[0])]);
        return stored(Storage::kept, m_kept.size() - 1);
    }
    auto const construct = static_cast<Construct>(expression.number);
    if (construct == Construct::prefix) {
        return built_prefix(operands);
    }
    take(expression, operands);
    bool const has_one_set = entry_of(construct).association == Association::nary ||
                             construct == Construct::synchronising_interrupt;
    if (has_one_set && m_sets.size() > 1) {
        check_one_set(expression, operands);
    }
    switch (construct) {
    case Construct::sequential_composition:
    case Construct::external_choice:
    case Construct::synchronising_external_choice:
    case Construct::internal_choice:
    case Construct::generalised_parallel:
    case Construct::linked_parallel:
    case Construct::interleaving: return built_chain(construct);
    case Construct::alphabetised_parallel:
    case Construct::paired_parallel:
        if (m_processes.empty()) {
            throw ValueError("a replicated alphabetised parallel needs at least one argument");
        }
        return built_of_parts(construct);
    case Construct::stop:
    case Construct::skip:
    case Construct::run:
    case Construct::chaos:
    case Construct::renaming:
    case Construct::prefix:
    case Construct::guard:
    case Construct::sliding_choice:
    case Construct::interrupt:
    case Construct::synchronising_interrupt:
    case Construct::exception:
    case Construct::hiding:
    case Construct::projection: return built_of_parts(construct);
    }
    return {};
}

/// The operands by what they are; events come in pairs.
void TermHost::take(Expression const& expression, std::span<Value const> operands) {
    m_processes.clear();
    m_sets.clear();
    m_events.clear();
    bool const has_pairs = expression.number == static_cast<unsigned>(Construct::renaming) ||
                           expression.number == static_cast<unsigned>(Construct::linked_parallel);
    for (std::size_t index = 0; index < operands.size(); ++index) {
        Value const operand = operands[index];
        if (operand.is(Value::Kind::foreign)) {
            m_processes.push_back(operand);
        } else if (has_pairs) {
            take_pair(operand, operands[++index],
                      expression.number == static_cast<unsigned>(Construct::linked_parallel));
        } else {
            events_in(operand);
            m_sets.push_back(operand);
        }
    }
}

void TermHost::take_pair(Value left, Value right, bool is_link) {
    Value const tick = Value::event(Values::tick_number);
    if (is_link && left == tick && right == tick) {
        return; // which goes without saying
    }
    if (left.is(Value::Kind::channel) && right.is(Value::Kind::channel)) {
        take_completions(left, right);
        return;
    }
    m_events.push_back(visible_event(left));
    m_events.push_back(visible_event(right));
}

/// Each event that begins as the left one does, and what begins as the right one with the same
/// fields behind.
void TermHost::take_completions(Value left, Value right) {
    std::size_t const given = m_channels.store().elements(left).size();
    BitSet events;
    m_channels.insert_closure(left, events);
    for (unsigned const event : events) {
        std::vector<Value> const components = components_of(event);
        Value const other = m_channels.with_fields(right, std::span(components).subspan(given));
        m_events.push_back(event);
        m_events.push_back(visible_event(other));
    }
}

std::vector<Value> TermHost::components_of(unsigned event) const {
    std::vector<Value> components;
    auto const parts = m_channels.parts_of(event);
    for (Value const field : parts->fields) {
        if (field.is(Value::Kind::dotted)) {
            components.push_back(m_channels.store().head(field));
            std::span<Value const> const inner = m_channels.store().elements(field);
            components.insert(components.end(), inner.begin(), inner.end());
        } else {
            components.push_back(field);
        }
    }
    return components;
}

Value TermHost::built_prefix(std::span<Value const> operands) {
    unsigned const depth = depth_of(operands[1]) + 1;
    if (operands[0].is(Value::Kind::set)) [[unlikely]] {
        OwningArray<ProcessPointer> processes{take_term(operands[1])};
        return add(entry_of(Construct::prefix)
                       .build(Parts{std::move(processes), {events_in(operands[0])}, {}}),
                   depth);
    }
    return add(make_prefix(visible_event(operands[0]), term(operands[1])), depth);
}

/// Of any number of processes: one alone stands for itself, and of two-sided constructs more than
/// two stand within each other.
Value TermHost::built_chain(Construct construct) {
    if (m_processes.size() == 1) {
        return m_processes.front();
    }
    bool const is_nary = entry_of(construct).association == Association::nary;
    if (m_processes.empty()) {
        switch (construct) {
        case Construct::external_choice:
        case Construct::synchronising_external_choice:
            return add(entry_of(Construct::stop).build({}), 1);
        case Construct::sequential_composition:
        case Construct::interleaving: return add(entry_of(Construct::skip).build({}), 1);
        default:
            throw ValueError(std::string(entry_of(construct).name) +
                             " over nothing: it needs at least one process");
        }
    }
    if (is_nary || m_processes.size() == 2) {
        return built_of_parts(construct);
    }
    std::vector<Value> rest = std::exchange(m_processes, {});
    bool const from_right = entry_of(construct).association == Association::right;
    if (from_right) {
        std::reverse(rest.begin(), rest.end());
    }
    Value whole = rest.front();
    for (std::size_t index = 1; index < rest.size(); ++index) {
        m_processes =
            from_right ? std::vector{rest[index], whole} : std::vector{whole, rest[index]};
        whole = built_of_parts(construct);
    }
    return whole;
}

Value TermHost::built_of_parts(Construct construct) {
    unsigned const depth = depth_of_processes() + 1;
    if (depth > nesting_limit) {
        throw NestedTerm();
    }
    bool const has_one_set = entry_of(construct).association == Association::nary ||
                             construct == Construct::synchronising_interrupt;
    Parts parts{OwningArray<ProcessPointer>(m_processes.size()), {}, m_events};
    std::transform(m_processes.begin(), m_processes.end(), parts.processes.begin(),
                   [&](Value process) { return take_term(process); });
    std::size_t const count = has_one_set ? std::min<std::size_t>(m_sets.size(), 1) : m_sets.size();
    for (std::size_t index = 0; index < count; ++index) {
        parts.sets.push_back(events_in(m_sets[index]));
    }
    return add(entry_of(construct).build(parts), depth);
}

/// The sets along a chain must be equal: in one term with many operands, and where synchronising
/// interrupts stand in a row.
void TermHost::check_one_set(Expression const& expression, std::span<Value const> operands) const {
    Value before;
    for (std::size_t index = 0; index < operands.size(); ++index) {
        if (!operands[index].is(Value::Kind::set)) {
            continue;
        }
        if (before && before != operands[index]) {
            unsigned const operand = m_program.operands[expression.first_operand + index];
            throw Values::EvaluationError(
                m_program.expressions[operand].place,
                "parentheses are needed: this set is not that of the operator before it");
        }
        before = operands[index];
    }
}

BitSet const& TermHost::events_in(Value set) const {
    if (Values::is_event_set(set)) {
        return Values::events_of(set);
    }
    if (set.is(Value::Kind::set)) {
        for (Value const element : m_channels.store().elements(set)) {
            if (element.is(Value::Kind::channel)) {
                throw ValueError(incomplete(element));
            }
        }
    }
    throw ValueError("a set of events is wanted here, and " +
                     Values::short_text_of(m_channels, set) + " is " +
                     (set.is(Value::Kind::set) ? "a set of other values"
                                               : std::string(Values::name_of(set.kind()))));
}

std::vector<unsigned> TermHost::trace_in(Value sequence) const {
    if (!sequence.is(Value::Kind::sequence)) {
        throw ValueError("a sequence of events is wanted here, and " +
                         Values::short_text_of(m_channels, sequence) + " is " +
                         std::string(Values::name_of(sequence.kind())));
    }
    std::vector<unsigned> trace;
    for (Value const element : m_channels.store().elements(sequence)) {
        if (!trace.empty() && trace.back() == Values::tick_number) {
            throw ValueError(tick_ends_trace);
        }
        trace.push_back(event(element));
    }
    return trace;
}

/// tick is one.
unsigned TermHost::event(Value event) const {
    if (!event.is(Value::Kind::event)) [[unlikely]] {
        if (event.is(Value::Kind::channel)) {
            throw ValueError(incomplete(event));
        }
        throw ValueError("an event is wanted here, and " +
                         Values::short_text_of(m_channels, event) + " is " +
                         std::string(Values::name_of(event.kind())));
    }
    return event.as_event();
}

unsigned TermHost::visible_event(Value event) const {
    unsigned const number = this->event(event);
    if (number < Values::first_declared_number) {
        throw ValueError("'tick' may stand only in a set of events and in 'tick <-> tick'");
    }
    return number;
}

std::string TermHost::incomplete(Value channel) const {
    BitSet events;
    m_channels.insert_closure(channel, events);
    return "the event " + in_quotes(Values::short_text_of(m_channels, channel)) +
           " is incomplete: fields are missing, as in " +
           in_quotes(m_channels.event_name(*events.begin()));
}

Value TermHost::refer(unsigned definition, std::span<Value const> arguments, Values::Place place) {
    return stored(Storage::reference, instance_of(definition, arguments, place));
}

/// Whoever watches what is done with terms ends evaluating, too.
void TermHost::look() {
    ProcessCompiler::watch_recursion();
}

NamedProcess const& TermHost::reference(unsigned definition, std::span<Value const> arguments,
                                        Values::Place place) {
    return static_cast<NamedProcess const&>(
        *m_references[instance_of(definition, arguments, place)]);
}

/// The number of the call, which has a reference now.
unsigned TermHost::instance_of(unsigned definition, std::span<Value const> arguments,
                               Values::Place place) {
    unsigned const call = m_calls.insert(definition, arguments).number;
    if (call < m_references.size() && m_references[call] != nullptr) {
        return call;
    }
    m_references.resize(m_calls.size());
    NamedProcessPointer made = arguments.empty()
                                   ? m_source.reference(m_names.definitions[definition].name)
                                   : m_source.add_reference();
    if (m_graph.is_sequential[definition]) {
        m_source.declare_sequential(*made);
    }
    m_instances.resize(std::size_t{made->number()} + 1);
    m_instances.back() = {call, m_parent, place};
    m_references[call] = std::move(made);
    return call;
}

Value TermHost::stored(Storage storage, std::size_t number) {
    return Value::foreign(static_cast<unsigned>(number * 4) + static_cast<unsigned>(storage));
}

TermHost::Storage TermHost::storage_of(Value value) {
    return static_cast<Storage>(value.as_foreign() % 4);
}

bool TermHost::is_kept(Value value) {
    return value.is(Value::Kind::foreign) && storage_of(value) == Storage::kept;
}

std::size_t TermHost::number_of(Value value) {
    return value.as_foreign() / 4;
}

ProcessPointer const& TermHost::term(Value value) const {
    std::size_t const number = number_of(value);
    switch (storage_of(value)) {
    case Storage::built: return m_built[number].term;
    case Storage::kept: return m_kept[number].term;
    case Storage::reference: break;
    }
    return m_references[number];
}

unsigned TermHost::depth_of(Value value) const {
    std::size_t const number = number_of(value);
    switch (storage_of(value)) {
    case Storage::built: return m_built[number].depth;
    case Storage::kept: return m_kept[number].depth;
    case Storage::reference: break;
    }
    return 1;
}

Value TermHost::add(ProcessPointer term, unsigned depth) {
    if (depth > nesting_limit) {
        throw NestedTerm();
    }
    m_built.push_back({std::move(term), depth});
    return stored(Storage::built, m_built.size() - 1);
}

/// Every term is part of one other, or kept.
ProcessPointer TermHost::take_term(Value value) {
    if (storage_of(value) == Storage::built) {
        return std::move(m_built[number_of(value)].term);
    }
    return term(value);
}

unsigned TermHost::depth_of_processes() const {
    unsigned deepest = 0;
    for (Value const process : m_processes) {
        deepest = std::max(deepest, depth_of(process));
    }
    return deepest;
}

} // namespace Calder::Script
