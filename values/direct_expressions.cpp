#include "values/direct_expressions.h"

#include <algorithm>
#include <span>

namespace Calder::Values {

namespace {

/// Each level takes some hundred bytes of the stack. Expressions that people write are less deep.
constexpr unsigned most_depth = 64;
constexpr unsigned too_deep = most_depth + 1;

bool is_direct_by_itself(Program const& program, Expression const& expression) {
    switch (expression.kind) {
    case ExpressionKind::constant:
    case ExpressionKind::variable:
    case ExpressionKind::operation:
    case ExpressionKind::conditional:
    case ExpressionKind::conjunction:
    case ExpressionKind::disjunction:
    case ExpressionKind::construct:
    case ExpressionKind::broken: return true;
    case ExpressionKind::call:
        return program.definitions[expression.number].mode == CallMode::refer;
    case ExpressionKind::comprehension: return false;
    }
    return false;
}

} // namespace

void mark_direct_expressions(Program& program) {
    std::vector<unsigned char> depths(program.expressions.size());
    for (std::size_t number = 0; number < depths.size(); ++number) {
        Expression& expression = program.expressions[number];
        bool const may_be = expression.operand_count <= most_direct_operands &&
                            is_direct_by_itself(program, expression);
        unsigned depth = may_be ? 1 : too_deep;
        for (unsigned const operand :
             std::span(program.operands)
                 .subspan(expression.first_operand, expression.operand_count)) {
            depth = std::max(depth, depths[operand] + 1U);
        }
        depths[number] = static_cast<unsigned char>(std::min(depth, too_deep));
        expression.is_direct = depth < too_deep;
    }
}

} // namespace Calder::Values
