#include "values/direct_expressions.h"
#include "values/interpreter.h"

#include <array>

namespace Calder::Values {

inline Expression const& Interpreter::operand_of(Expression const& expression,
                                                 unsigned index) const {
    return m_program.expressions[m_program.operands[expression.first_operand + index]];
}

inline bool Interpreter::direct_truth(Expression const& expression, unsigned index) {
    return truth_of(direct(operand_of(expression, index)),
                    m_program.operands[expression.first_operand + index]);
}

/// The value of an expression that is marked so. An error is that of `m_direct`. Short, as most are
/// constants and variables: everything else has a frame of its own.
Value Interpreter::direct(Expression const& expression) {
    switch (expression.kind) {
    case ExpressionKind::constant: return expression.value;
    case ExpressionKind::variable: return m_values[m_slots + expression.number];
    case ExpressionKind::operation: return direct_operation(expression);
    case ExpressionKind::conditional:
    case ExpressionKind::conjunction:
    case ExpressionKind::disjunction: return direct_condition(expression);
    case ExpressionKind::call:
    case ExpressionKind::construct: return direct_question(expression);
    case ExpressionKind::comprehension: // never marked
    case ExpressionKind::broken: break;
    }
    throw Unreadable();
}

[[gnu::noinline]] Value Interpreter::direct_operation(Expression const& expression) {
    return with_operands(expression, [&](std::span<Value const> operands) {
        Value const quick = quick_result(expression.operation, operands);
        return quick ? quick : m_operations.apply(expression.operation, operands);
    });
}

[[gnu::noinline]] Value Interpreter::direct_condition(Expression const& expression) {
    bool const first = direct_truth(expression, 0);
    if (expression.kind == ExpressionKind::conditional) {
        return direct(operand_of(expression, first ? 1 : 2));
    }
    bool const is_decided = first == (expression.kind == ExpressionKind::disjunction);
    return Value::truth(is_decided ? first : direct_truth(expression, 1));
}

/// What the host answers.
[[gnu::noinline]] Value Interpreter::direct_question(Expression const& expression) {
    return with_operands(expression, [&](std::span<Value const> operands) {
        return expression.kind == ExpressionKind::construct
                   ? m_host.construct(expression, operands)
                   : m_host.refer(expression.number, operands, expression.place);
    });
}

/// Mostly there are two.
template <typename Make>
inline Value Interpreter::with_operands(Expression const& expression, Make const& make) {
    auto const make_of = [&](std::span<Value const> operands) {
        ++m_steps;
        m_direct = &expression;
        return make(operands);
    };
    if (expression.operand_count == 2) {
        std::array const operands{direct(operand_of(expression, 0)),
                                  direct(operand_of(expression, 1))};
        return make_of(operands);
    }
    std::array<Value, most_direct_operands> operands;
    for (unsigned index = 0; index < expression.operand_count; ++index) {
        operands[index] = direct(operand_of(expression, index));
    }
    return make_of(std::span<Value const>(operands.data(), expression.operand_count));
}

} // namespace Calder::Values
