#include "script/hints.h"
#include "script/limits.h"
#include "script/translator.h"

#include <charconv>
#include <string>

namespace Calder::Script {

using Values::Operation;
using Values::Value;

namespace {

using Token = Parser::token;

/// Of an operator with one operand or two.
Operation operation_of(TokenKind kind, bool has_two) {
    switch (kind) {
    case Token::PLUS: return Operation::add;
    case Token::MINUS: return has_two ? Operation::subtract : Operation::negate;
    case Token::TIMES: return Operation::multiply;
    case Token::DIVIDE: return Operation::divide;
    case Token::MODULO: return Operation::remainder;
    case Token::CARET: return Operation::concatenate;
    case Token::HASH: return Operation::length;
    case Token::EQUAL_TO: return Operation::equal;
    case Token::DIFFERS: return Operation::differ;
    case Token::LESS: return Operation::less;
    case Token::AT_MOST: return Operation::at_most;
    case Token::GREATER: return Operation::greater;
    case Token::AT_LEAST: return Operation::at_least;
    default: return Operation::negation; // the only other one that the grammar lets through
    }
}

} // namespace

unsigned Translator::value(unsigned node) {
    using Values::ExpressionKind;
    if (m_tree[node].depth > deepest_node) {
        return broken(node); // which is reported
    }
    switch (m_tree[node].kind) {
    case NodeKind::name: return value_of_name(node);
    case NodeKind::number: return value_of_number(node);
    case NodeKind::call: return value_of_call(node);
    case NodeKind::dotted: return event(node, Use::value);
    case NodeKind::tuple: return elements(Operation::tuple, node);
    case NodeKind::sequence: return elements(Operation::sequence, node);
    case NodeKind::set: return elements(Operation::set, node);
    case NodeKind::closure: return closure(node);
    case NodeKind::operation: return value_of_operation(node);
    case NodeKind::conjunction:
    case NodeKind::disjunction: {
        bool const both = m_tree[node].kind == NodeKind::conjunction;
        return add({.kind = both ? ExpressionKind::conjunction : ExpressionKind::disjunction,
                    .place = node},
                   {value(m_tree.child(node, 0)), value(m_tree.child(node, 1))});
    }
    case NodeKind::conditional:
        return add({.kind = ExpressionKind::conditional, .place = node},
                   {value(m_tree.child(node, 0)), value(m_tree.child(node, 1)),
                    value(m_tree.child(node, 2))});
    case NodeKind::let: return value(m_tree[node].last_child);
    case NodeKind::construct:
        report(node, "this is a process, and a value is wanted here");
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
    case NodeKind::datatype: break; // no node of a value
    }
    return broken(node);
}

unsigned Translator::value_of_number(unsigned node) {
    std::string_view const digits = text_of(node);
    bool const is_negative = m_tree[node].first_token != m_tree[node].token;
    std::string const text = (is_negative ? "-" : "") + std::string(digits);
    std::int64_t number = 0;
    if (m_tokens.is_reported(m_tree[node].token)) {
        return broken(node);
    }
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc()) {
        report(node, "the number " + in_quotes(text) + " is too large");
        return broken(node);
    }
    return add_constant(m_store.integer(number), node);
}

unsigned Translator::value_of_name(unsigned node) {
    Binding const binding = m_names.bindings[node];
    if (binding.kind == Binding::Kind::variable) {
        return add_variable(slot_of(binding.number), node);
    }
    if (binding.kind == Binding::Kind::definition) {
        NamedDefinition const& named = m_names.definitions[binding.number];
        if (!named.is_process) {
            return call(node, binding.number, none);
        }
        if (named.is_lost) {
            return broken(node); // it may have been meant for a value, but is none that can be had
        }
        std::string_view const name = text_of(node);
        if (!m_names.channels.contains(name) && !m_names.values.contains(name) && name != "tick") {
            report(node, in_quotes(text_of(node)) + " is a process, and a value is wanted here");
            return broken(node);
        }
    }
    return value_of_unbound_name(node);
}

unsigned Translator::value_of_unbound_name(unsigned node) {
    std::string_view const name = text_of(node);
    if (m_names.channels.contains(name)) {
        return event(node, Use::value);
    }
    if (auto const datatype = m_datatype_definitions.find(name);
        datatype != m_datatype_definitions.end()) {
        return add(
            {.kind = Values::ExpressionKind::call, .place = node, .number = datatype->second}, {});
    }
    if (m_names.values.contains(name)) {
        return add_constant(m_store.name(std::string(name)), node);
    }
    if (name == "tick") {
        return add_constant(Value::event(Values::tick_number), node);
    }
    Builtin const* const builtin = find_builtin(name);
    if (builtin == nullptr) {
        report_unknown(node);
        return broken(node);
    }
    switch (builtin->kind) {
    case Builtin::Kind::truth: return add_constant(Value::truth(builtin->truth), node);
    case Builtin::Kind::truth_values:
        return add_operation(
            Operation::set, node,
            {add_constant(Value::truth(false), node), add_constant(Value::truth(true), node)});
    case Builtin::Kind::events: return add_declared(node);
    case Builtin::Kind::function: break;
    }
    report_arguments(node, name, builtin->parameter_count, 0);
    return broken(node);
}

unsigned Translator::value_of_call(unsigned node) {
    Binding const binding = m_names.bindings[node];
    std::string_view const name = text_of(node);
    if (binding.kind == Binding::Kind::definition) {
        if (m_names.definitions[binding.number].is_process) {
            report(node, in_quotes(name) + " is a process, and a value is wanted here");
            return broken(node);
        }
        return call(node, binding.number, node);
    }
    Builtin const* const builtin =
        binding.kind == Binding::Kind::neither ? find_builtin(name) : nullptr;
    if (builtin == nullptr || builtin->kind != Builtin::Kind::function) {
        if (binding.kind == Binding::Kind::variable || builtin != nullptr ||
            m_names.channels.contains(name) || m_names.values.contains(name)) {
            report(node, in_quotes(name) + " is no definition with parameters" +
                             (m_names.channels.contains(name) || m_names.values.contains(name)
                                  ? ": its fields stand behind dots, as in " +
                                        in_quotes(std::string(name) + ".0")
                                  : ""));
        } else {
            report_unknown(node);
        }
        return broken(node);
    }
    if (count(node) != builtin->parameter_count) {
        report_arguments(node, name, builtin->parameter_count, count(node));
        return broken(node);
    }
    Operands operands;
    for (unsigned const child : m_tree.children_of(node)) {
        operands.push_back(value(child));
    }
    return add_operation(builtin->operation, node, operands);
}

unsigned Translator::value_of_operation(unsigned node) {
    Operands operands;
    TokenKind const kind = m_tokens[m_tree[node].token].kind;
    if (refuse_sum_of_processes(node)) {
        return broken(node);
    }
    for (unsigned const child : m_tree.children_of(node)) {
        operands.push_back(value(child));
    }
    return add_operation(operation_of(kind, operands.size() == 2), node, operands);
}

/// `P + Q`, with which other algebras choose.
bool Translator::refuse_sum_of_processes(unsigned node) {
    if (m_tokens[m_tree[node].token].kind != Parser::token::PLUS) {
        return false;
    }
    for (unsigned const child : m_tree.children_of(node)) {
        if (m_tree[child].kind == NodeKind::construct) {
            report_token(node, "numbers are added, and a choice is written 'P [] Q' or 'P |~| Q'");
            return true;
        }
    }
    return false;
}

/// Of a tuple, a sequence or a set.
unsigned Translator::elements(Operation operation, unsigned node) {
    Operands operands;
    for (unsigned const child : m_tree.children_of(node)) {
        append_element(child, operands);
    }
    return add_operation(operation, node, operands);
}

void Translator::append_element(unsigned node, Operands& operands) {
    if (m_tree[node].kind == NodeKind::comprehension) {
        operands.push_back(comprehension(node, Results::values));
    } else if (m_tree[node].kind == NodeKind::range) {
        unsigned const slots = new_slots(3);
        unsigned const range =
            add_operation(Operation::sequence_range, node,
                          {value(m_tree.child(node, 0)), value(m_tree.child(node, 1))});
        operands.push_back(add_comprehension(
            {{{variable_pattern(slots), range, slots + 1}}, {add_variable(slots, node)}}, node));
    } else {
        operands.push_back(value(node));
    }
}

unsigned Translator::closure(unsigned node) {
    Operands operands;
    for (unsigned const child : m_tree.children_of(node)) {
        operands.push_back(m_tree[child].kind == NodeKind::comprehension
                               ? comprehension(child, Results::beginnings)
                               : event(child, Use::closure));
    }
    return add_operation(Operation::closure, node, operands);
}

unsigned Translator::comprehension(unsigned node, Results wanted) {
    Values::Comprehension made;
    unsigned const results = first(node);
    for (unsigned child = m_tree[results].next; child != none; child = m_tree[child].next) {
        if (m_tree[child].kind == NodeKind::generator) {
            unsigned const through = value(m_tree[child].last_child);
            unsigned const slots = new_slots(2);
            made.qualifiers.push_back({pattern(first(child)), through, slots});
        } else {
            made.qualifiers.push_back({Values::no_number, value(child), 0});
        }
    }
    for (unsigned const child : m_tree.children_of(results)) {
        switch (wanted) {
        case Results::values: append_element(child, made.results); break;
        case Results::beginnings: made.results.push_back(event(child, Use::closure)); break;
        case Results::processes: made.results.push_back(process(child)); break;
        case Results::renamed: append_pair(Construct::renaming, child, made.results); break;
        case Results::alphabets:
            made.results.push_back(child == first(results) ? event_set(child) : process(child));
            break;
        }
    }
    return add_comprehension(std::move(made), node);
}

} // namespace Calder::Script
