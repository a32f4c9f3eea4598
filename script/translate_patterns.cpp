#include "script/limits.h"
#include "script/translator.h"

#include <string>

namespace Calder::Script {

using Values::Pattern;
using Values::PatternKind;
using Values::Value;

unsigned Translator::pattern(unsigned node) {
    if (m_tree[node].depth > deepest_node) {
        return add_pattern({.kind = PatternKind::anything}, {}); // which is reported
    }
    Operands parts;
    switch (m_tree[node].kind) {
    case NodeKind::name: return pattern_of_name(node);
    case NodeKind::number: {
        Values::Expression const number = m_made.program.expressions[value_of_number(node)];
        return add_pattern({.kind = PatternKind::constant, .value = number.value}, {});
    }
    case NodeKind::tuple:
    case NodeKind::sequence:
        for (unsigned const child : m_tree.children_of(node)) {
            parts.push_back(pattern(child));
        }
        return add_pattern({.kind = m_tree[node].kind == NodeKind::tuple ? PatternKind::tuple
                                                                         : PatternKind::sequence},
                           parts);
    case NodeKind::operation: return pattern_around_sequence(node);
    case NodeKind::dotted: {
        unsigned const head = first(node);
        if (m_tree[head].kind != NodeKind::name || !m_names.values.contains(text_of(head))) {
            return refuse_pattern(head);
        }
        for (unsigned child = m_tree[head].next; child != none; child = m_tree[child].next) {
            parts.push_back(pattern(child));
        }
        return add_pattern(
            {.kind = PatternKind::dotted, .value = m_store.name(std::string(text_of(head)))},
            parts);
    }
    case NodeKind::set:
        return count(node) == 0
                   ? add_pattern({.kind = PatternKind::constant, .value = m_store.set({})}, {})
                   : refuse_pattern(node);
    case NodeKind::absorbed:
    case NodeKind::list:
    case NodeKind::call:
    case NodeKind::closure:
    case NodeKind::range:
    case NodeKind::conjunction:
    case NodeKind::disjunction:
    case NodeKind::conditional:
    case NodeKind::let:
    case NodeKind::comprehension:
    case NodeKind::generator:
    case NodeKind::pair:
    case NodeKind::construct:
    case NodeKind::communication:
    case NodeKind::output:
    case NodeKind::input:
    case NodeKind::chosen_input:
    case NodeKind::definition:
    case NodeKind::declaration:
    case NodeKind::channel:
    case NodeKind::datatype: break;
    }
    return refuse_pattern(node);
}

unsigned Translator::pattern_of_name(unsigned node) {
    std::string_view const name = text_of(node);
    if (name == "_") {
        return add_pattern({.kind = PatternKind::anything}, {});
    }
    if (m_names.bindings[node].kind == Binding::Kind::variable) {
        return variable_pattern(slot_of(m_names.bindings[node].number));
    }
    Value const constant = NameTable::is_truth_value(name) ? Value::truth(name == "true")
                                                           : m_store.name(std::string(name));
    return add_pattern({.kind = PatternKind::constant, .value = constant}, {});
}

/// `<x, y> ^ s` and `s ^ <x, y>`; of two listed sequences, one of both.
unsigned Translator::pattern_around_sequence(unsigned node) {
    if (m_tokens[m_tree[node].token].kind != Parser::token::CARET) {
        return refuse_pattern(node);
    }
    unsigned const left = m_tree.child(node, 0);
    unsigned const right = m_tree.child(node, 1);
    bool const left_is_listed = m_tree[left].kind == NodeKind::sequence;
    bool const right_is_listed = m_tree[right].kind == NodeKind::sequence;
    if (!left_is_listed && !right_is_listed) {
        return refuse_pattern(node);
    }
    Operands parts;
    if (!left_is_listed) {
        parts.push_back(pattern(left));
    }
    for (unsigned const child : m_tree.children_of(left_is_listed ? left : right)) {
        parts.push_back(pattern(child));
    }
    if (left_is_listed) {
        parts.push_back(pattern(right));
    }
    return add_pattern({.kind = left_is_listed ? PatternKind::front : PatternKind::back}, parts);
}

unsigned Translator::refuse_pattern(unsigned node) {
    report(node, "this is no pattern: one is made of names, '_', numbers, values of datatypes, "
                 "'( , )', '< , >' and '<x> ^ s'");
    return add_pattern({.kind = PatternKind::anything}, {});
}

unsigned Translator::add_pattern(Pattern pattern, Operands const& parts) {
    Values::Program& program = m_made.program;
    pattern.first_part = static_cast<unsigned>(program.parts.size());
    pattern.part_count = static_cast<unsigned>(parts.size());
    program.parts.insert(program.parts.end(), parts.begin(), parts.end());
    program.patterns.push_back(pattern);
    return static_cast<unsigned>(program.patterns.size() - 1);
}

unsigned Translator::variable_pattern(unsigned slot) {
    return add_pattern({.kind = PatternKind::variable, .number = slot}, {});
}

} // namespace Calder::Script
