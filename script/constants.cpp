#include "script/constants.h"

#include <algorithm>

namespace Calder::Script {

namespace {

using Values::Expression;
using Values::ExpressionKind;
using Values::Operation;
using Values::Program;
using Values::Value;

/// Not those whose results can be much larger than their operands: nobody may ever ask for them.
bool is_cheap(Operation operation) {
    switch (operation) {
    case Operation::add:
    case Operation::subtract:
    case Operation::multiply:
    case Operation::divide:
    case Operation::remainder:
    case Operation::negate:
    case Operation::less:
    case Operation::at_most:
    case Operation::greater:
    case Operation::at_least:
    case Operation::equal:
    case Operation::differ:
    case Operation::negation:
    case Operation::tuple:
    case Operation::sequence:
    case Operation::length:
    case Operation::head:
    case Operation::is_null:
    case Operation::is_element:
    case Operation::set:
    case Operation::set_union:
    case Operation::intersection:
    case Operation::difference:
    case Operation::is_member:
    case Operation::cardinality:
    case Operation::is_empty:
    case Operation::dot:
    case Operation::closure:
    case Operation::field_values: return true;
    case Operation::sequence_range:
    case Operation::concatenate:
    case Operation::tail:
    case Operation::concat:
    case Operation::sequence_of:
    case Operation::set_range:
    case Operation::big_union:
    case Operation::big_intersection:
    case Operation::power_set:
    case Operation::set_of: return false;
    }
    return false;
}

bool has_constants_only(Program const& program, Expression const& expression) {
    auto const first = program.operands.begin() + expression.first_operand;
    return std::all_of(first, first + expression.operand_count, [&](unsigned operand) {
        return program.expressions[operand].kind == ExpressionKind::constant;
    });
}

} // namespace

void fold_constants(Translation& translation, std::vector<Value> const& values,
                    Values::Evaluator& evaluator) {
    Program& program = translation.program;
    // Operands stand in front of what they are for.
    for (unsigned number = 0; number < program.expressions.size(); ++number) {
        Expression& expression = program.expressions[number];
        Value value;
        if (expression.kind == ExpressionKind::call && expression.operand_count == 0) {
            value = expression.number < values.size() ? values[expression.number] : Value();
        } else if (expression.kind == ExpressionKind::operation && is_cheap(expression.operation) &&
                   has_constants_only(program, expression)) {
            try {
                value = evaluator.evaluate(number);
            } catch (Values::EvaluationError const&) {
                continue;
            }
        }
        if (value) {
            expression.kind = ExpressionKind::constant;
            expression.value = value;
        }
    }
}

} // namespace Calder::Script
