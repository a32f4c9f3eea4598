#include "values/interpreter.h"

#include "values/limits.h"
#include "values/text.h"
#include "values/value_error.h"

#include <algorithm>
#include <array>

namespace Calder::Values {

namespace {

/// So many calls are told at either end of a long chain.
constexpr std::size_t told_calls = 5;

/// Some ten microseconds.
constexpr unsigned steps_between_looks = 512;

Call calls_left_out() {
    return {no_number, {}, 0};
}

/// The first and the last ones of very many.
void shorten(std::vector<Call>& calls) {
    if (calls.size() <= 2 * told_calls + 1) {
        return;
    }
    calls[told_calls] = calls_left_out();
    calls.erase(calls.begin() + told_calls + 1, calls.end() - told_calls);
}

} // namespace

Interpreter::Interpreter(Program const& program, ValueStore& store, ChannelTable const& channels,
                         Host& host)
    : m_program(program), m_store(store), m_channels(channels), m_host(host),
      m_operations(channels), m_matcher(program, store) {}

Value Interpreter::call(unsigned definition, std::span<Value const> arguments, Place place) {
    m_outermost.place = place;
    return run([&] {
        m_tasks.push_back({&m_outermost, 1, 0}); // its operands are there
        m_values.assign(arguments.begin(), arguments.end());
        if (m_program.definitions[definition].mode == CallMode::remember) {
            begin_remembered(definition, 0, place);
        } else {
            begin_body(definition, 0, place);
        }
    });
}

Value Interpreter::evaluate(unsigned expression, unsigned slot_count) {
    return run([&] {
        m_values.resize(slot_count);
        begin(expression);
    });
}

template <typename Start> Value Interpreter::run(Start const& start) {
    // Also where telling an error runs out of memory.
    struct Forgetting {
        Interpreter& interpreter;
        ~Forgetting() { interpreter.forget_all(); }
    } const forgetting{*this};
    try {
        start();
        while (!m_tasks.empty()) {
            step();
            if (++m_steps == steps_between_looks) {
                m_steps = 0;
                m_host.look();
            }
        }
    } catch (ValueError const& caught) {
        EvaluationError error(m_tasks.back().expression->place, caught.message());
        add_calls(error);
        throw error;
    } catch (EvaluationError& error) {
        add_calls(error);
        throw;
    }
    return m_values.back();
}

void Interpreter::step() {
    Task& task = m_tasks.back();
    Expression const& expression = *task.expression;
    switch (expression.kind) {
    case ExpressionKind::constant:
    case ExpressionKind::variable: break; // never become tasks
    case ExpressionKind::operation:
        if (has_operands(task)) {
            std::span<Value const> const operands = values_from(task.first);
            Value const quick = quick_result(expression.operation, operands);
            finish(task.first, quick ? quick : m_operations.apply(expression.operation, operands));
        }
        break;
    case ExpressionKind::conditional: choose(task); break;
    case ExpressionKind::conjunction:
    case ExpressionKind::disjunction: connect(task); break;
    case ExpressionKind::call: step_call(task); break;
    case ExpressionKind::construct:
        if (has_operands(task)) {
            finish(task.first, m_host.construct(expression, values_from(task.first)));
        }
        break;
    case ExpressionKind::comprehension: step_comprehension(task); break;
    case ExpressionKind::broken: throw Unreadable();
    }
}

/// Nothing is under way any more: what was begun before an error is not known to be.
void Interpreter::forget_all() {
    for (Frame const& frame : m_frames) {
        if (frame.remembered != no_number) {
            m_results[frame.remembered] = Value();
        }
    }
    m_tasks.clear();
    m_values.clear();
    m_frames.clear();
    m_slots = 0;
}

void Interpreter::add_calls(EvaluationError& error) const {
    auto const add = [&](Frame const& frame) {
        std::size_t const count = m_program.definitions[frame.definition].parameter_count;
        std::span<Value const> const arguments = values_from(frame.first).first(count);
        error.calls.push_back(
            {frame.definition, {arguments.begin(), arguments.end()}, frame.place});
    };
    for (std::size_t index = m_frames.size(); index > 0; --index) {
        if (m_frames.size() > 2 * told_calls && index == m_frames.size() - told_calls) {
            error.calls.push_back(calls_left_out());
            index = told_calls;
        }
        add(m_frames[index - 1]);
    }
    shorten(error.calls);
}

/// Whether the value is there at once; otherwise it is a task, the last one now.
bool Interpreter::begin(unsigned expression) {
    Expression const& begun = m_program.expressions[expression];
    if (is_at_hand(begun)) {
        m_values.push_back(value_at_hand(begun));
        return true;
    }
    if (begun.kind == ExpressionKind::operation && begun.operand_count == 2) {
        unsigned const* const operands = &m_program.operands[begun.first_operand];
        if (Value const quick = quick_value(begun.operation, operands[0], operands[1])) {
            m_values.push_back(quick);
            return true;
        }
    }
    m_tasks.push_back({&begun, 0, height()});
    return false;
}

/// Of an operation on variables and constants, where it is done at once; otherwise nothing.
Value Interpreter::quick_value(Operation operation, unsigned left, unsigned right) const {
    Expression const& first = m_program.expressions[left];
    Expression const& second = m_program.expressions[right];
    if (!is_at_hand(first) || !is_at_hand(second)) {
        return {};
    }
    std::array const operands{value_at_hand(first), value_at_hand(second)};
    return quick_result(operation, operands);
}

/// Goes on with the operands, from left to right; false when one of them has become a task.
bool Interpreter::has_operands(Task& task) {
    Expression const& expression = *task.expression;
    while (task.step < expression.operand_count) {
        unsigned const operand = m_program.operands[expression.first_operand + task.step];
        ++task.step;
        if (!begin(operand)) {
            return false;
        }
    }
    return true;
}

/// Ends the last task.
void Interpreter::finish(unsigned first, Value result) {
    m_tasks.pop_back();
    m_values.resize(first);
    m_values.push_back(result);
}

void Interpreter::choose(Task& task) {
    unsigned const* const operands = &m_program.operands[task.expression->first_operand];
    if (task.step == 0) {
        task.step = 1;
        if (!begin(operands[0])) {
            return;
        }
    }
    bool const holds = truth_of(m_values.back(), operands[0]);
    m_values.pop_back();
    m_tasks.pop_back();
    begin(operands[holds ? 1 : 2]);
}

void Interpreter::connect(Task& task) {
    Expression const& expression = *task.expression;
    bool const deciding = expression.kind == ExpressionKind::disjunction;
    while (true) {
        if (task.step > 0) {
            unsigned const operand = m_program.operands[expression.first_operand + task.step - 1];
            bool const value = truth_of(m_values.back(), operand);
            if (value == deciding || task.step == 2) {
                finish(task.first, Value::truth(value));
                return;
            }
            m_values.pop_back();
        }
        unsigned const operand = m_program.operands[expression.first_operand + task.step];
        ++task.step;
        if (!begin(operand)) {
            return;
        }
    }
}

bool Interpreter::truth_of(Value value, unsigned expression) const {
    if (!value.is(Value::Kind::truth)) {
        throw EvaluationError(m_program.expressions[expression].place,
                              short_text_of(m_channels, value) + " is no truth value");
    }
    return value.as_truth();
}

} // namespace Calder::Values
