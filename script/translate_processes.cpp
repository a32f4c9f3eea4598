#include "script/hints.h"
#include "script/translator.h"

#include <string>

namespace Calder::Script {

using Values::Operation;

unsigned Translator::process(unsigned node) {
    switch (m_tree[node].kind) {
    case NodeKind::name:
    case NodeKind::call:
    case NodeKind::dotted: return process_of_name(node);
    case NodeKind::construct: return process_of_construct(node);
    case NodeKind::conditional:
        return add({.kind = Values::ExpressionKind::conditional, .place = node},
                   {value(m_tree.child(node, 0)), process(m_tree.child(node, 1)),
                    process(m_tree.child(node, 2))});
    case NodeKind::let: return process(m_tree[node].last_child);
    case NodeKind::operation:
        if (refuse_sum_of_processes(node)) {
            return broken(node);
        }
        [[fallthrough]];
    case NodeKind::number:
    case NodeKind::tuple:
    case NodeKind::sequence:
    case NodeKind::set:
    case NodeKind::closure:
    case NodeKind::conjunction:
    case NodeKind::disjunction:
        report(node, "this is a value, and a process is wanted here");
        return broken(node);
    case NodeKind::absorbed:
    case NodeKind::list:
    case NodeKind::range:
    case NodeKind::comprehension:
    case NodeKind::generator:
    case NodeKind::pair:
    case NodeKind::communication:
    case NodeKind::output:
    case NodeKind::input:
    case NodeKind::chosen_input:
    case NodeKind::definition:
    case NodeKind::declaration:
    case NodeKind::channel:
    case NodeKind::datatype: break; // no node of a process
    }
    return broken(node);
}

unsigned Translator::process_of_name(unsigned node) {
    Binding const binding = m_names.bindings[node];
    bool const is_path = m_tree[node].kind == NodeKind::dotted;
    if (binding.kind == Binding::Kind::definition &&
        m_names.definitions[binding.number].is_process) {
        unsigned const arguments = is_path                               ? arguments_of_path(node)
                                   : m_tree[node].kind == NodeKind::call ? node
                                                                         : none;
        return call(node, binding.number, arguments);
    }
    if (is_path) {
        report(node, "this is a value, and a process is wanted here");
        return broken(node);
    }
    std::string_view const name = text_of(node);
    bool const is_value = binding.kind != Binding::Kind::neither || m_names.values.contains(name) ||
                          m_names.datatypes.contains(name) || find_builtin(name) != nullptr;
    if (is_value) {
        report(node, in_quotes(name) + " is a value, and a process is wanted here");
    } else if (!is_lost(node)) {
        bool const is_call = m_tree[node].kind == NodeKind::call;
        report_token(node, (is_call ? "the name " : "the process ") + in_quotes(name) +
                               " is not defined" + hint_for_process(name, is_call));
    }
    return broken(node);
}

Wording Translator::hint_for_process(std::string_view name, bool is_call) {
    if (m_names.channels.contains(name)) {
        return ": " + in_quotes(name) + " is an event";
    }
    if (std::string const hint = word_hint(name); !hint.empty()) {
        return ": " + hint;
    }
    Suggestion suggestion(name, m_suggestion_budget);
    suggestion.consider("STOP");
    suggestion.consider("SKIP");
    for (NamedDefinition const& definition : m_names.definitions) {
        if (!suggestion.wants_more()) {
            break;
        }
        if (definition.has_name() && (definition.is_process || is_call)) {
            suggestion.consider(definition.name);
        }
    }
    if (is_call) {
        for (std::string_view const builtin : builtin_names()) {
            suggestion.consider(builtin);
        }
    }
    return suggestion.wording();
}

unsigned Translator::process_of_construct(unsigned node) {
    Construct const construct = m_tree[node].construct;
    if (construct == Construct::prefix) {
        return prefix(node);
    }
    if (construct == Construct::guard) {
        unsigned const otherwise = add_construct(Construct::stop, node, {});
        return add({.kind = Values::ExpressionKind::conditional, .place = node},
                   {value(m_tree.child(node, 0)), process(m_tree.child(node, 1)), otherwise});
    }
    Operands operands;
    unsigned place = 0;
    for (unsigned const child : m_tree.children_of(node)) {
        append_operand(node, child, place++, operands);
        // Where synchronising interrupts stand in a row, their sets must be the same.
        if (construct == Construct::synchronising_interrupt && place == 1 &&
            m_tree[child].kind == NodeKind::construct && m_tree[child].parentheses == 0 &&
            m_tree[child].construct == construct) {
            operands.push_back(event_set(m_tree.child(child, 1)));
        }
    }
    return add_construct(construct, node, operands);
}

void Translator::append_operand(unsigned node, unsigned child, unsigned place, Operands& operands) {
    Construct const construct = m_tree[node].construct;
    bool const is_alphabetised =
        construct == Construct::alphabetised_parallel || construct == Construct::paired_parallel;
    if (m_tree[child].kind == NodeKind::pair) {
        append_pair(construct, child, operands);
    } else if (m_tree[child].kind == NodeKind::comprehension) {
        operands.push_back(comprehension(child, construct == Construct::renaming ? Results::renamed
                                                : is_alphabetised ? Results::alphabets
                                                                  : Results::processes));
    } else {
        operands.push_back(is_set_operand(node, place) ? event_set(child) : process(child));
    }
}

/// By the order in which the grammar puts sets and processes.
bool Translator::is_set_operand(unsigned node, unsigned place) const {
    bool const is_replicated = m_tree[m_tree[node].last_child].kind == NodeKind::comprehension;
    switch (m_tree[node].construct) {
    case Construct::run:
    case Construct::chaos: return true;
    case Construct::paired_parallel: return place % 2 == 0;
    case Construct::alphabetised_parallel: return place == 1 || place == 2;
    case Construct::hiding:
    case Construct::projection:
    case Construct::synchronising_interrupt:
    case Construct::exception: return place == 1;
    case Construct::synchronising_external_choice:
    case Construct::generalised_parallel: return is_replicated ? place == 0 : place % 2 == 1;
    case Construct::stop:
    case Construct::skip:
    case Construct::renaming:
    case Construct::prefix:
    case Construct::guard:
    case Construct::sequential_composition:
    case Construct::sliding_choice:
    case Construct::interrupt:
    case Construct::external_choice:
    case Construct::internal_choice:
    case Construct::linked_parallel:
    case Construct::interleaving: return false;
    }
    return false;
}

/// A link of tick to itself goes without saying.
void Translator::append_pair(Construct construct, unsigned pair, Operands& operands) {
    unsigned const left = m_tree.child(pair, 0);
    unsigned const right = m_tree.child(pair, 1);
    if (construct == Construct::linked_parallel && is_tick(left) && is_tick(right)) {
        return;
    }
    operands.push_back(event(left, Use::renamed));
    operands.push_back(event(right, Use::renamed));
}

bool Translator::is_tick(unsigned node) const {
    Binding const binding = m_names.bindings[node];
    bool const is_free =
        binding.kind == Binding::Kind::neither || (binding.kind == Binding::Kind::definition &&
                                                   m_names.definitions[binding.number].is_process);
    return is_free && m_tree[node].kind == NodeKind::name && text_of(node) == "tick";
}

unsigned Translator::prefix(unsigned node) {
    unsigned const communication = first(node);
    unsigned const head = first(communication);
    bool const is_bare = count(communication) == 1;
    NodeKind const kind = m_tree[head].kind;
    if (is_bare && kind == NodeKind::construct) {
        report(node, "what stands before '->' is an event or a set of events, not a process");
        process(head); // for what else is wrong
        process(m_tree[node].last_child);
        return broken(node);
    }
    if (is_bare && (kind == NodeKind::set || kind == NodeKind::closure)) {
        return add_construct(Construct::prefix, node,
                             {event_set(head), process(m_tree[node].last_child)});
    }
    bool const may_be_name = kind == NodeKind::name || kind == NodeKind::dotted;
    Operands const pieces{may_be_name ? event(head, is_bare ? Use::event : Use::beginning)
                                      : value(head)};
    if (is_bare) {
        return add_construct(Construct::prefix, node,
                             {pieces[0], process(m_tree[node].last_child)});
    }
    // Where nothing that is read is used, the events are one set.
    bool as_set = true;
    bool any_input = false;
    for (unsigned const item : m_tree.children_of(communication)) {
        any_input |= m_tree[item].kind == NodeKind::input;
        as_set &= m_tree[item].kind != NodeKind::chosen_input &&
                  (m_tree[item].kind != NodeKind::input || !uses_input(first(item)));
    }
    if (as_set && any_input) {
        unsigned const set =
            add_operation(Operation::set, node, {inputs(node, m_tree[head].next, pieces, true)});
        return add_construct(Construct::prefix, node, {set, process(m_tree[node].last_child)});
    }
    return inputs(node, m_tree[head].next, pieces, false);
}

bool Translator::uses_input(unsigned pattern) const {
    if (m_tree[pattern].kind == NodeKind::name) {
        Binding const binding = m_names.bindings[pattern];
        return binding.kind == Binding::Kind::variable && m_names.variables[binding.number].is_used;
    }
    for (unsigned const child : m_tree.children_of(pattern)) {
        if (uses_input(child)) {
            return true;
        }
    }
    return false;
}

/// The items from this one on, behind what is known of the event: the prefixes for all values of
/// the inputs that follow each other, in the choice that they make; or, as parts of a set, only the
/// events.
unsigned Translator::inputs(unsigned node, unsigned item, Operands const& pieces, bool as_set) {
    Operands known = pieces;
    for (; item != none && m_tree[item].kind == NodeKind::output; item = m_tree[item].next) {
        Fields fields;
        known.push_back(output(first(item), fields));
    }
    if (item == none) {
        unsigned const event = add_operation(Operation::dot, first(node), known);
        return as_set ? event
                      : add_construct(Construct::prefix, node,
                                      {event, process(m_tree[node].last_child)});
    }
    NodeKind const kind = m_tree[item].kind;
    Values::Comprehension made;
    for (; item != none && (m_tree[item].kind == kind || m_tree[item].kind == NodeKind::output);
         item = m_tree[item].next) {
        if (m_tree[item].kind == NodeKind::output) {
            Fields fields;
            known.push_back(output(first(item), fields));
            continue;
        }
        append_input(item, known, made);
    }
    made.results = {inputs(node, item, known, as_set)};
    unsigned const all = add_comprehension(std::move(made), first(node));
    if (as_set) {
        return all;
    }
    return add_construct(kind == NodeKind::input ? Construct::external_choice
                                                 : Construct::internal_choice,
                         node, {all});
}

/// `?x` goes through what may stand there; a pattern is held against each of that.
void Translator::append_input(unsigned item, Operands& known, Values::Comprehension& made) {
    unsigned const shape = first(item);
    unsigned behind = 0;
    for (unsigned next = m_tree[item].next; next != none; next = m_tree[next].next) {
        ++behind;
    }
    unsigned const number = add_constant(m_store.integer(behind), item);
    unsigned const through =
        count(item) > 1 ? value(m_tree[item].last_child)
                        : add_operation(Operation::field_values, item,
                                        {add_operation(Operation::dot, item, known), number});
    bool const is_variable = m_names.bindings[shape].kind == Binding::Kind::variable;
    unsigned const bound = is_variable ? slot_of(m_names.bindings[shape].number) : new_slots(1);
    unsigned const slots = new_slots(2);
    made.qualifiers.push_back({variable_pattern(bound), through, slots});
    known.push_back(add_variable(bound, item));
    bool const is_anything = m_tree[shape].kind == NodeKind::name && text_of(shape) == "_";
    if (!is_variable && !is_anything) {
        unsigned const one = add_operation(Operation::sequence, item, {add_variable(bound, item)});
        unsigned const inner = new_slots(2);
        made.qualifiers.push_back({pattern(shape), one, inner});
    }
}

/// A field, or any value where that is no name.
unsigned Translator::output(unsigned node, Fields& fields) {
    if (m_tree[node].kind != NodeKind::name) {
        return value(node);
    }
    unsigned const made = field(node, fields);
    if (fields.unknown != none) {
        report_unknown(fields.unknown);
    }
    return made;
}

} // namespace Calder::Script
