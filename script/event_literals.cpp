#include "script/event_literals.h"

#include "script/suggestion.h"
#include "values/value_error.h"

#include <string>

namespace Calder::Script {

namespace {

using ProcessCompiler::first_visible_event;
using Values::Expression;
using Values::ExpressionKind;
using Values::Value;
using Use = EventLiteral::Use;

class Check {
  public:
    Check(Telling const& telling, NameTable const& names, Translation& translation,
          ProcessCompiler::Session const& session, Diagnostics& diagnostics)
        : m_telling(telling), m_names(names), m_translation(translation), m_session(session),
          m_diagnostics(diagnostics) {}

    void run() {
        for (unsigned const number : m_translation.declared_later) {
            Expression& expression = m_translation.program.expressions[number];
            std::string_view const name = text_of(expression.place);
            Value const value =
                m_names.channels.contains(name)
                    ? m_telling.channels.find(name)
                    : m_telling.channels.store().event_set(m_telling.channels.events());
            if (value) {
                expression.kind = ExpressionKind::constant;
                expression.value = value;
            }
        }
        for (EventLiteral const& literal : m_translation.literals) {
            check(literal);
        }
        for (Expression const& expression : m_translation.program.expressions) {
            if (has_too_many_fields(expression) && !is_known_to_be_wrong(expression.place)) {
                report(expression.place, "the event " + in_quotes(name_of(expression.place)) +
                                             " has too many fields");
            }
        }
    }

  private:
    /// Whatever the values of its variables are: each is one component of an event, or more.
    bool has_too_many_fields(Expression const& expression) const {
        if (expression.kind != ExpressionKind::operation ||
            expression.operation != Values::Operation::dot || is_input(expression.place)) {
            return false;
        }
        std::size_t components = 0;
        auto const operands = std::span(m_translation.program.operands)
                                  .subspan(expression.first_operand, expression.operand_count);
        for (unsigned const operand : operands.subspan(1)) {
            components += Values::component_count(m_translation.program.expressions[operand].value);
        }
        Value const beginning = m_translation.program.expressions[operands[0]].value;
        return components > m_telling.channels.room_behind(beginning);
    }

    /// Then the whole event is told of.
    bool is_input(unsigned node) const {
        NodeKind const kind = m_telling.tree[node].kind;
        return kind == NodeKind::input || kind == NodeKind::chosen_input;
    }

    void check(EventLiteral const& literal) {
        Expression& expression = m_translation.program.expressions[literal.expression];
        Value const value = literal.has_unknown ? Value() : value_of(expression);
        if (!value) {
            report_undeclared(literal);
            // Terms are still made, to see what else is wrong, and any event will do for that.
            bool const is_performed = literal.use == Use::event;
            expression.kind = is_performed ? ExpressionKind::constant : ExpressionKind::broken;
            expression.value = Value::event(Values::first_declared_number);
            return;
        }
        expression.kind = ExpressionKind::constant;
        expression.value = value;
        check_use(literal, value);
    }

    /// Nothing when no event begins so.
    Value value_of(Expression const& expression) const {
        std::vector<Value> parts;
        for (unsigned index = 0; index < expression.operand_count; ++index) {
            Expression const& part =
                m_translation.program
                    .expressions[m_translation.program.operands[expression.first_operand + index]];
            if (part.kind != ExpressionKind::constant) {
                return {};
            }
            parts.push_back(part.value);
        }
        try {
            return m_telling.channels.with_fields(parts[0], std::span(parts).subspan(1));
        } catch (Values::ValueError const&) {
            return {};
        }
    }

    static bool wants_event(Use use) {
        return use == Use::event || use == Use::element || use == Use::step;
    }

    void check_use(EventLiteral const& literal, Value value) {
        bool const is_complete = value.is(Value::Kind::event);
        if (!is_complete && wants_event(literal.use)) {
            BitSet events;
            m_telling.channels.insert_closure(value, events);
            std::string const name = name_of(literal.node);
            report(literal.node,
                   "the event " + in_quotes(name) + " is incomplete: fields are missing, as in " +
                       in_quotes(m_session.event_object(*events.begin())->name()) +
                       (literal.use == Use::element
                            ? "; " + in_quotes("{| " + name + " |}") + " holds all that begin so"
                            : ""));
        }
    }

    void report_undeclared(EventLiteral const& literal) {
        if (is_known_to_be_wrong(literal.node)) {
            return;
        }
        std::string const name = name_of(literal.node);
        bool const may_begin = literal.use == Use::closure;
        auto const process = m_names.by_name.find(name);
        bool const is_process = !may_begin && process != m_names.by_name.end() &&
                                m_names.definitions[process->second].is_process;
        report(literal.node, (may_begin ? "no declared event begins with " + in_quotes(name)
                                        : "the event " + in_quotes(name) + " is not declared") +
                                 (is_process ? ": " + in_quotes(name) + " is a process"
                                             : suggestion_for(name, !wants_event(literal.use))));
    }

    /// Something else has been reported, which may well be all that is wrong with this event.
    bool is_known_to_be_wrong(unsigned node) const {
        Node const& event = m_telling.tree[node];
        for (unsigned token = event.first_token; token <= event.last_token; ++token) {
            if (m_telling.tokens.is_reported(token)) {
                return true;
            }
        }
        return m_names.lost.contains(m_telling.tokens.text_of(event.first_token));
    }

    /// As it is written, without blanks.
    std::string name_of(unsigned node) const {
        Node const& event = m_telling.tree[node];
        std::string name;
        for (unsigned token = event.first_token; token <= event.last_token; ++token) {
            name += m_telling.tokens.text_of(token);
        }
        return name;
    }

    Wording suggestion_for(std::string const& name, bool may_be_channel) {
        Suggestion suggestion(name, m_suggestion_budget);
        unsigned const bound = m_session.number_bound();
        for (unsigned number = first_visible_event; number < bound && suggestion.wants_more();
             ++number) {
            std::string_view const known = m_session.event_object(number)->name();
            suggestion.consider(known);
            // Every channel has events, and its name is how they begin.
            if (may_be_channel) {
                suggestion.consider(known.substr(0, known.find('.')));
            }
        }
        return suggestion.wording();
    }

    std::string_view text_of(unsigned node) const {
        return m_telling.tokens.text_of(m_telling.tree[node].token);
    }
    void report(unsigned node, Wording message) {
        Node const& event = m_telling.tree[node];
        m_diagnostics.push_back(diagnostic_over(m_telling.tokens, event.first_token,
                                                event.last_token, std::move(message)));
    }

    Telling const& m_telling;
    NameTable const& m_names;
    Translation& m_translation;
    ProcessCompiler::Session const& m_session;
    Diagnostics& m_diagnostics;
    unsigned m_suggestion_budget = suggestion_budget;
};

} // namespace

void check_event_literals(Telling const& telling, NameTable const& names, Translation& translation,
                          ProcessCompiler::Session const& session, Diagnostics& diagnostics) {
    Check(telling, names, translation, session, diagnostics).run();
}

} // namespace Calder::Script
