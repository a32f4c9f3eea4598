#include "script/assertions.h"
#include "script/hints.h"
#include "script/translator.h"

#include <string>

namespace Calder::Script {

using Values::Operation;
using Values::Value;

unsigned Translator::event_set(unsigned node) {
    NodeKind const kind = m_tree[node].kind;
    unsigned const inner = first(node);
    if (kind == NodeKind::name && m_names.bindings[node].kind == Binding::Kind::neither &&
        m_names.channels.contains(text_of(node))) {
        report(node, "a set of events stands between braces, as in '{| " +
                         std::string(text_of(node)) + " |}'");
        return broken(node);
    }
    if (kind != NodeKind::set || (inner != none && m_tree[inner].kind == NodeKind::comprehension)) {
        return value(node);
    }
    bool const is_doubled =
        count(node) == 1 && m_tree[inner].parentheses == 0 &&
        (m_tree[inner].kind == NodeKind::set || m_tree[inner].kind == NodeKind::closure);
    if (is_doubled) {
        return event_set(inner);
    }
    Operands operands;
    for (unsigned const child : m_tree.children_of(node)) {
        bool const may_be_name =
            m_tree[child].kind == NodeKind::name || m_tree[child].kind == NodeKind::dotted;
        if (may_be_name) {
            operands.push_back(event(child, Use::element));
        } else {
            append_element(child, operands);
        }
    }
    return add_operation(Operation::set, node, operands);
}

unsigned Translator::trace(unsigned node) {
    bool const is_joined = m_tree[node].kind == NodeKind::operation &&
                           m_tokens[m_tree[node].token].kind == Parser::token::CARET;
    if (is_joined) {
        Operands sides;
        for (unsigned const child : m_tree.children_of(node)) {
            sides.push_back(trace(child));
        }
        return add_operation(Operation::concatenate, node, sides);
    }
    unsigned const inner = first(node);
    if (m_tree[node].kind != NodeKind::sequence ||
        (inner != none && m_tree[inner].kind == NodeKind::comprehension)) {
        return value(node);
    }
    Operands operands;
    for (unsigned const child : m_tree.children_of(node)) {
        bool const may_be_name =
            m_tree[child].kind == NodeKind::name || m_tree[child].kind == NodeKind::dotted;
        if (is_tick(child) && m_tree[child].next != none) {
            report(child, tick_ends_trace);
        }
        if (may_be_name) {
            operands.push_back(event(child, Use::step));
        } else {
            append_element(child, operands);
        }
    }
    return add_operation(Operation::sequence, node, operands);
}

/// Not a variable, nor defined as a value: a channel, or something that nobody knows and that
/// stands where an event should.
bool Translator::may_be_event(unsigned node, Use use) const {
    Binding const binding = m_names.bindings[node];
    if (m_tree[node].kind != NodeKind::name || binding.kind == Binding::Kind::variable ||
        (binding.kind == Binding::Kind::definition &&
         !m_names.definitions[binding.number].is_process)) {
        return false;
    }
    std::string_view const name = text_of(node);
    return m_names.channels.contains(name) ||
           (use != Use::value && name != "tick" && !m_names.values.contains(name) &&
            !m_names.datatypes.contains(name) && find_builtin(name) == nullptr);
}

unsigned Translator::event(unsigned node, Use use) {
    bool const has_fields = m_tree[node].kind == NodeKind::dotted;
    unsigned const head = has_fields ? first(node) : node;
    if (has_fields && m_names.bindings[node].kind == Binding::Kind::definition &&
        !may_be_event(head, use)) {
        return value_of_path(node);
    }
    bool const is_performed = use == Use::event || use == Use::renamed || use == Use::beginning;
    if (is_performed && is_tick(node)) {
        report(node, "'tick' may stand only in a set of events and in 'tick <-> tick'");
        return broken(node);
    }
    if (!has_fields && !may_be_event(node, use)) {
        return value(node);
    }
    bool const is_literal = may_be_event(head, use);
    bool const has_channel = !is_literal || m_names.channels.contains(text_of(head));
    Fields fields{is_literal && has_channel};
    Operands parts;
    if (!is_literal) {
        parts.push_back(value(head));
    } else {
        parts.push_back(has_channel ? add_declared(head) : broken(head));
    }
    for (unsigned child = has_fields ? m_tree[head].next : none; child != none;
         child = m_tree[child].next) {
        parts.push_back(field(child, fields));
    }
    unsigned const made = add_operation(Operation::dot, node, parts);
    if (!has_channel || fields.are_literal) {
        m_made.literals.push_back({made, node, use, !has_channel || fields.unknown != none});
    } else if (fields.unknown != none && !is_lost(fields.unknown)) {
        report_unknown(fields.unknown);
    }
    return made;
}

/// A definition that is local to another one, asked for by its path.
unsigned Translator::value_of_path(unsigned node) {
    unsigned const definition = m_names.bindings[node].number;
    if (m_names.definitions[definition].is_process) {
        report(node, in_quotes(m_names.definitions[definition].name) +
                         " is a process, and a value is wanted here");
        return broken(node);
    }
    return call(node, definition, arguments_of_path(node));
}

/// What is known when the channels are declared: a channel, or `Events`.
unsigned Translator::add_declared(unsigned node) {
    unsigned const made = broken(node);
    m_made.declared_later.push_back(made);
    return made;
}

/// What stands behind a dot: a value rather than a channel of the same name.
unsigned Translator::field(unsigned node, Fields& fields) {
    if (m_tree[node].kind != NodeKind::name) {
        fields.are_literal &= m_tree[node].kind == NodeKind::number;
        return value(node);
    }
    std::string_view const name = text_of(node);
    Binding const binding = m_names.bindings[node];
    bool const is_value_definition = binding.kind == Binding::Kind::definition &&
                                     !m_names.definitions[binding.number].is_process;
    if (binding.kind == Binding::Kind::variable || is_value_definition) {
        fields.are_literal = false;
        return value(node);
    }
    if (m_names.values.contains(name)) {
        return add_constant(m_store.name(std::string(name)), node);
    }
    if (NameTable::is_truth_value(name)) {
        return add_constant(Value::truth(name == "true"), node);
    }
    if (m_names.datatypes.contains(name) || m_names.channels.contains(name) ||
        find_builtin(name) != nullptr) {
        return value_of_unbound_name(node);
    }
    fields.unknown = node;
    return broken(node);
}

void Translator::report_unknown(unsigned node) {
    Binding const binding = m_names.bindings[node];
    if (binding.kind == Binding::Kind::definition &&
        m_names.definitions[binding.number].is_process) {
        report(node, in_quotes(text_of(node)) + " is a process, and a value is wanted here");
    } else if (!is_lost(node)) {
        report_token(node, "the name " + in_quotes(text_of(node)) + " is not defined" +
                               suggestion_for_value(text_of(node)));
    }
}

Wording Translator::suggestion_for_value(std::string_view name) {
    if (std::string const hint = word_hint(name); !hint.empty()) {
        return ": " + hint;
    }
    Suggestion suggestion(name, m_suggestion_budget);
    for (Variable const& variable : m_names.variables) {
        std::string_view const known = m_tokens.text_of(variable.token);
        if (variable.owner == m_definition && known == name) {
            return ": it is known only where it is bound, as an input behind its '->'";
        }
        if (variable.owner == m_definition) {
            suggestion.consider(known);
        }
    }
    for (unsigned number = 0; number < m_names.definitions.size(); ++number) {
        NamedDefinition const& definition = m_names.definitions[number];
        if (number != m_definition && definition.has_name() && !definition.is_process) {
            suggestion.consider(definition.name);
        }
    }
    for (std::string_view const known : m_names.declared) {
        suggestion.consider(known);
    }
    for (std::string_view const known : builtin_names()) {
        suggestion.consider(known);
    }
    return suggestion.wording();
}

} // namespace Calder::Script
