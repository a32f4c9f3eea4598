#include "script/translation.h"

#include "script/translator.h"

#include <string>
#include <utility>

namespace Calder::Script {

using Values::CallMode;
using Values::Clause;
using Values::Definition;
using Values::Operation;
using Values::Value;

Translator::Translator(TokenList const& tokens, SyntaxTree const& tree, NameTable const& names,
                       Values::ValueStore& store, Diagnostics& diagnostics)
    : m_tokens(tokens), m_tree(tree), m_names(names), m_store(store), m_diagnostics(diagnostics) {}

Translation Translator::run() {
    m_made.program.definitions.resize(m_names.definitions.size());
    for (unsigned const datatype : m_tree.datatypes) {
        m_datatype_definitions.try_emplace(
            text_of(datatype), static_cast<unsigned>(m_made.program.definitions.size()));
        m_made.program.definitions.emplace_back();
    }
    // In the order of the script, which is the order of names.
    for (unsigned const datatype : m_tree.datatypes) {
        for (unsigned const each : m_tree.children_of(datatype)) {
            unsigned const head = m_tree[each].kind == NodeKind::dotted ? first(each) : each;
            if (m_tree[head].kind == NodeKind::name) {
                m_store.name(std::string(text_of(head)));
            }
        }
    }
    for (unsigned const node : m_tree.declarations) {
        translate_declaration(node);
    }
    for (unsigned const node : m_tree.datatypes) {
        translate_datatype(node);
    }
    auto const mark = [this] {
        m_made.first_expressions.push_back(
            static_cast<unsigned>(m_made.program.expressions.size()));
    };
    for (unsigned number = 0; number < m_names.definitions.size(); ++number) {
        mark();
        translate_definition(number);
    }
    mark();
    return std::move(m_made);
}

void Translator::translate_definition(unsigned number) {
    NamedDefinition const& named = m_names.definitions[number];
    m_definition = number;
    m_slots.clear();
    m_slot_count = 0;
    Definition made;
    made.name = named.name;
    made.place = named.clauses.front();
    made.parameter_count = static_cast<unsigned>(named.captures.size()) + named.parameter_count;
    Operands captured;
    for (unsigned const variable : named.captures) {
        captured.push_back(variable_pattern(slot_of(variable)));
    }
    for (unsigned const node : named.clauses) {
        Clause clause{captured, 0};
        for (unsigned const parameter : m_tree.children_of(first(node))) {
            clause.patterns.push_back(pattern(parameter));
        }
        if (named.is_lost) {
            if (auto const parts = m_tree.fragments.find(node); parts != m_tree.fragments.end()) {
                for (unsigned const part : parts->second) {
                    check_fragment(part);
                }
            }
            clause.body = broken(node);
        } else {
            clause.body = body(named, node);
        }
        made.clauses.push_back(std::move(clause));
    }
    made.slot_count = m_slot_count;
    m_made.program.definitions[number] = std::move(made);
    m_definition = none;
}

/// What one of its clauses says.
unsigned Translator::body(NamedDefinition const& named, unsigned node) {
    unsigned const body = m_tree[node].last_child;
    if (named.is_process) {
        return kept(process(body), node);
    }
    switch (named.part) {
    case AssertionPart::trace: return trace(body);
    case AssertionPart::events: return event_set(body);
    case AssertionPart::no_part:
    case AssertionPart::process: break;
    }
    return value(body);
}

/// Translated only for what is wrong with it. What a name or a set was meant for is told by the
/// token on its other side; where that leaves it open, nothing is said.
void Translator::check_fragment(unsigned node) {
    using T = Parser::token;
    NodeKind const kind = m_tree[node].kind;
    bool const is_name = kind == NodeKind::name || kind == NodeKind::dotted;
    bool const is_set = kind == NodeKind::set || kind == NodeKind::closure;
    if (kind == NodeKind::construct) {
        process(node);
        return;
    }
    if (!is_name && !is_set) {
        return;
    }
    TokenKind const before = m_tokens[m_tree[node].first_token - 1].kind;
    switch (m_tokens[m_tree[node].last_token + 1].kind) {
    case T::ARROW:
        if (is_set) {
            event_set(node);
        } else {
            event(node, Use::event);
        }
        return;
    case T::SEMICOLON:
    case T::SLIDING_CHOICE:
    case T::INTERRUPT:
    case T::SYNCHRONISING_INTERRUPT_OPEN:
    case T::EXTERNAL_CHOICE:
    case T::SYNCHRONISING_CHOICE_OPEN:
    case T::INTERNAL_CHOICE:
    case T::PARALLEL_OPEN:
    case T::LEFT_BRACKET:
    case T::INTERLEAVING:
    case T::HIDING:
    case T::PROJECTION:
        if (is_name) {
            process(node);
        }
        return;
    default:
        if (is_set && (before == T::HIDING || before == T::PROJECTION ||
                       before == T::LEFT_BRACKET || before == T::PARALLEL_OPEN)) {
            event_set(node);
        }
    }
}

/// A process that is on no cycle is evaluated once and shared.
unsigned Translator::kept(unsigned process, unsigned node) {
    return add({.kind = Values::ExpressionKind::construct, .place = node, .number = keep_construct},
               {process});
}

/// `datatype T = a | b.S.{0..1}` is the set of `a` and of every `b.x.y`.
void Translator::translate_datatype(unsigned node) {
    m_slots.clear();
    m_slot_count = 0;
    Translation::Datatype datatype{node, {}, {}};
    Operands values;
    for (unsigned const each : m_tree.children_of(node)) {
        values.push_back(alternative(each, datatype));
    }
    Definition made;
    made.name = text_of(node);
    made.place = node;
    made.mode = CallMode::remember;
    made.slot_count = datatype.slot_count = m_slot_count;
    made.clauses.push_back({{}, add_operation(Operation::set, node, values)});
    m_made.program.definitions[m_datatype_definitions.at(text_of(node))] = std::move(made);
    m_made.datatypes.push_back(std::move(datatype));
}

unsigned Translator::alternative(unsigned node, Translation::Datatype& datatype) {
    bool const has_fields = m_tree[node].kind == NodeKind::dotted;
    unsigned const head = has_fields ? first(node) : node;
    if (m_tree[head].kind != NodeKind::name) {
        return broken(node); // which is reported
    }
    Value const name = m_store.name(std::string(text_of(head)));
    datatype.names.push_back(name);
    std::vector<unsigned>& sets = datatype.fields.emplace_back();
    if (!has_fields) {
        return add_constant(name, node);
    }
    Values::Comprehension fields;
    Operands parts{add_constant(name, head)};
    for (unsigned child = m_tree[head].next; child != none; child = m_tree[child].next) {
        unsigned const slots = new_slots(3);
        sets.push_back(value(child));
        fields.qualifiers.push_back({variable_pattern(slots), sets.back(), slots + 1});
        parts.push_back(add_variable(slots, child));
    }
    fields.results = {add_operation(Operation::dot, node, parts)};
    return add_comprehension(std::move(fields), node);
}

void Translator::translate_declaration(unsigned node) {
    Translation::Declaration made{node, {}, {}};
    std::size_t const errors = m_diagnostics.size();
    for (unsigned const child : m_tree.children_of(node)) {
        if (m_tree[child].kind == NodeKind::channel) {
            made.channels.push_back(child);
            continue;
        }
        auto const add_field = [&](unsigned field) {
            m_slots.clear();
            m_slot_count = 0;
            unsigned const expression = field_values(field);
            made.fields.push_back({field, expression, m_slot_count});
        };
        if (m_tree[child].kind == NodeKind::dotted && m_tree[child].parentheses == 0) {
            for (unsigned const field : m_tree.children_of(child)) {
                add_field(field);
            }
        } else {
            add_field(child);
        }
    }
    made.is_broken = m_diagnostics.size() > errors;
    m_made.declarations.push_back(std::move(made));
}

/// What is listed keeps its order, and a name in it that means nothing else is a value of its own.
unsigned Translator::field_values(unsigned node) {
    Node const& set = m_tree[node];
    bool const is_listed =
        set.kind == NodeKind::set &&
        (set.first_child == none || m_tree[set.first_child].kind != NodeKind::comprehension);
    if (!is_listed) {
        return value(node);
    }
    Operands listed;
    for (unsigned const child : m_tree.children_of(node)) {
        if (m_tree[child].kind == NodeKind::name && !m_tokens.is_reported(m_tree[child].token)) {
            Fields fields;
            listed.push_back(field(child, fields));
        } else {
            append_element(child, listed);
        }
    }
    return add_operation(Operation::sequence, node, listed);
}

unsigned Translator::call(unsigned node, unsigned definition, unsigned arguments_node) {
    NamedDefinition const& named = m_names.definitions[definition];
    bool const from_outside = m_tree[node].kind == NodeKind::dotted;
    unsigned const given = arguments_node == none ? 0 : count(arguments_node);
    unsigned wanted = named.parameter_count;
    Operands arguments;
    if (from_outside) {
        wanted += static_cast<unsigned>(named.captures.size());
    } else {
        arguments = captured_arguments(definition, node);
    }
    if (arguments_node != none) {
        for (unsigned const argument : m_tree.children_of(arguments_node)) {
            arguments.push_back(value(argument));
        }
    }
    if (given != wanted) {
        if (!named.is_lost) {
            report_arguments(node, named.name, wanted, given);
        }
        return broken(node);
    }
    return add({.kind = Values::ExpressionKind::call, .place = node, .number = definition},
               arguments);
}

unsigned Translator::arguments_of_path(unsigned node) const {
    unsigned const last = m_tree[node].last_child;
    return m_tree[last].kind == NodeKind::call ? last : none;
}

void Translator::report_arguments(unsigned node, std::string_view name, unsigned wanted,
                                  unsigned given) {
    std::string const parameters =
        wanted == 0 ? "no parameters"
                    : std::to_string(wanted) + (wanted == 1 ? " parameter" : " parameters");
    std::string const arguments = given == 0   ? "none is"
                                  : given == 1 ? "1 is"
                                               : std::to_string(given) + " are";
    report(node, in_quotes(name) + " has " + parameters + ", and " + arguments + " given");
}

Translator::Operands Translator::captured_arguments(unsigned definition, unsigned node) {
    Operands arguments;
    for (unsigned const variable : m_names.definitions[definition].captures) {
        arguments.push_back(add_variable(slot_of(variable), node));
    }
    return arguments;
}

unsigned Translator::add(Values::Expression expression, Operands const& operands) {
    Values::Program& program = m_made.program;
    expression.first_operand = static_cast<unsigned>(program.operands.size());
    expression.operand_count = static_cast<unsigned>(operands.size());
    program.operands.insert(program.operands.end(), operands.begin(), operands.end());
    program.expressions.push_back(expression);
    return static_cast<unsigned>(program.expressions.size() - 1);
}

unsigned Translator::add_operation(Operation operation, unsigned place, Operands const& operands) {
    return add({.kind = Values::ExpressionKind::operation, .operation = operation, .place = place},
               operands);
}

unsigned Translator::add_construct(Construct construct, unsigned place, Operands const& operands) {
    return add({.kind = Values::ExpressionKind::construct,
                .place = place,
                .number = static_cast<unsigned>(construct)},
               operands);
}

unsigned Translator::add_constant(Value value, unsigned place) {
    return add({.kind = Values::ExpressionKind::constant, .place = place, .value = value}, {});
}

unsigned Translator::add_variable(unsigned slot, unsigned place) {
    return add({.kind = Values::ExpressionKind::variable, .place = place, .number = slot}, {});
}

unsigned Translator::add_comprehension(Values::Comprehension comprehension, unsigned place) {
    m_made.program.comprehensions.push_back(std::move(comprehension));
    return add({.kind = Values::ExpressionKind::comprehension,
                .place = place,
                .number = static_cast<unsigned>(m_made.program.comprehensions.size() - 1)},
               {});
}

unsigned Translator::broken(unsigned node) {
    return add({.kind = Values::ExpressionKind::broken, .place = node}, {});
}

unsigned Translator::slot_of(unsigned variable) {
    auto const [entry, is_new] = m_slots.try_emplace(variable, m_slot_count);
    m_slot_count += is_new ? 1 : 0;
    return entry->second;
}

unsigned Translator::new_slots(unsigned count) {
    return std::exchange(m_slot_count, m_slot_count + count);
}

bool Translator::is_lost(unsigned node) const {
    return m_names.lost.contains(text_of(node)) || m_tokens.is_reported(m_tree[node].token);
}

void Translator::report(unsigned node, Wording message) {
    m_diagnostics.push_back(diagnostic_at(location_of(m_tokens, m_tree, node), std::move(message)));
}

void Translator::report_token(unsigned node, Wording message) {
    m_diagnostics.push_back(
        diagnostic_at(m_tokens.location(m_tree[node].token), std::move(message)));
}

Location location_of(TokenList const& tokens, SyntaxTree const& tree, unsigned node) {
    Node const& place = tree[node];
    if (place.kind == NodeKind::construct || place.kind == NodeKind::definition ||
        place.kind == NodeKind::datatype || place.kind == NodeKind::let) {
        return tokens.location(place.token);
    }
    return tokens.location(place.first_token, place.last_token);
}

Translation translate(TokenList const& tokens, SyntaxTree const& tree, NameTable const& names,
                      Values::ValueStore& store, Diagnostics& diagnostics) {
    return Translator(tokens, tree, names, store, diagnostics).run();
}

} // namespace Calder::Script
