#include "values/interpreter.h"
#include "values/limits.h"
#include "values/text.h"
#include "values/value_error.h"

namespace Calder::Values {

namespace {

/// In the place of a result that is being computed; no value of an expression.
constexpr Value under_way = Value::foreign(no_number);

} // namespace

void Interpreter::step_call(Task& task) {
    Expression const& expression = *task.expression;
    if (task.step > expression.operand_count) {
        end_call(task.first);
        return;
    }
    if (!has_operands(task)) {
        return;
    }
    ++task.step;
    unsigned const definition = expression.number;
    switch (m_program.definitions[definition].mode) {
    case CallMode::evaluate: begin_body(definition, task.first, expression.place); break;
    case CallMode::remember: begin_remembered(definition, task.first, expression.place); break;
    case CallMode::refer:
        finish(task.first, m_host.refer(definition, values_from(task.first), expression.place));
        break;
    }
}

void Interpreter::visit_remembered(
    std::function<void(Evaluator::Remembered const&)> const& visit) const {
    for (unsigned call = 0; call < m_results.size(); ++call) {
        if (m_results[call]) {
            visit({m_calls.definition(call), m_calls.arguments(call), m_results[call]});
        }
    }
}

/// The body, unless it is known what it computes.
void Interpreter::begin_remembered(unsigned definition, unsigned first, Place place) {
    CallTable::Entry const entry = m_calls.insert(definition, values_from(first));
    m_results.resize(m_calls.size());
    Value const result = m_results[entry.number];
    if (result == under_way) {
        throw ValueError("the value of '" + m_program.definitions[definition].name +
                         short_text_of(m_channels, values_from(first)) + "' depends on itself");
    }
    if (result) {
        finish(first, result);
        return;
    }
    begin_body(definition, first, place, entry.number);
}

void Interpreter::begin_body(unsigned definition, unsigned first, Place place,
                             unsigned remembered) {
    if (m_frames.size() >= call_nesting_limit) {
        throw ValueError("the calls nest too deeply: more than " +
                         std::to_string(call_nesting_limit));
    }
    Definition const& called = m_program.definitions[definition];
    unsigned const slots = height();
    m_values.resize(slots + called.slot_count);
    unsigned const body = fitting_body(called, first, slots);
    m_frames.push_back({definition, place, first, slots, remembered});
    if (remembered != no_number) {
        m_results[remembered] = under_way;
    }
    m_slots = slots;
    begin(body);
}

unsigned Interpreter::fitting_body(Definition const& definition, unsigned first, unsigned slots) {
    std::span<Value> const variables = std::span(m_values).subspan(slots);
    for (Clause const& clause : definition.clauses) {
        std::size_t parameter = 0;
        while (parameter < clause.patterns.size() &&
               m_matcher.fits(clause.patterns[parameter], m_values[first + parameter], variables)) {
            ++parameter;
        }
        if (parameter == clause.patterns.size()) {
            return clause.body;
        }
    }
    throw ValueError(
        "no clause of '" + definition.name + "' fits " +
        short_text_of(m_channels, values_from(first).first(definition.parameter_count)));
}

void Interpreter::end_call(unsigned first) {
    Value const result = m_values.back();
    Frame const& ended = m_frames.back();
    if (ended.remembered != no_number) {
        m_results[ended.remembered] = result;
    }
    m_frames.pop_back();
    m_slots = m_frames.empty() ? 0 : m_frames.back().slots;
    finish(first, result);
}

} // namespace Calder::Values
