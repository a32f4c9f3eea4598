#include "values/interpreter.h"
#include "values/limits.h"
#include "values/text.h"

namespace Calder::Values {

/// Each qualifier has two steps, to compute its expression and to take the value; then each result
/// has one. What the results compute stays on the stack, and is what the comprehension yields.
void Interpreter::step_comprehension(Task& task) {
    Comprehension const& comprehension = m_program.comprehensions[task.expression->number];
    std::size_t const first_result = 2 * comprehension.qualifiers.size();
    while (true) {
        std::size_t const step = task.step;
        if (step < first_result) {
            Qualifier const& qualifier = comprehension.qualifiers[step / 2];
            ++task.step;
            if (step % 2 == 0) {
                if (!begin(qualifier.expression)) {
                    return;
                }
            } else if (!take(qualifier) && !go_back(task, comprehension, step / 2)) {
                break;
            }
        } else if (step - first_result < comprehension.results.size()) {
            check_size(height() - task.first + 1, "a comprehension");
            ++task.step;
            if (!begin(comprehension.results[step - first_result])) {
                return;
            }
        } else if (!go_back(task, comprehension, comprehension.qualifiers.size())) {
            break;
        }
    }
    m_tasks.pop_back();
}

/// The value of a qualifier: whether it can be satisfied.
bool Interpreter::take(Qualifier const& qualifier) {
    Value const value = m_values.back();
    m_values.pop_back();
    if (qualifier.pattern == no_number) {
        return truth_of(value, qualifier.expression);
    }
    if (!value.is(Value::Kind::set) && !value.is(Value::Kind::sequence)) {
        throw EvaluationError(m_program.expressions[qualifier.expression].place,
                              short_text_of(m_channels, value) +
                                  " is neither a set nor a sequence");
    }
    Value* const iteration = &m_values[m_slots + qualifier.first_slot];
    iteration[0] = value;
    iteration[1] = Value::small_integer(0);
    return find_next(qualifier);
}

/// Moves a generator to its next element that fits.
bool Interpreter::find_next(Qualifier const& generator) {
    std::span<Value> const slots = std::span(m_values).subspan(m_slots);
    std::span<Value const> const elements = m_store.elements(slots[generator.first_slot]);
    Value& place = slots[generator.first_slot + 1];
    for (auto next = static_cast<std::size_t>(place.as_integer()); next < elements.size();) {
        Value const element = elements[next++];
        place = Value::small_integer(static_cast<std::int64_t>(next));
        if (m_matcher.fits(generator.pattern, element, slots)) {
            return true;
        }
    }
    return false;
}

/// To the next way to satisfy the qualifiers in front of `behind`, if there is one.
bool Interpreter::go_back(Task& task, Comprehension const& comprehension, std::size_t behind) {
    for (; behind > 0; --behind) {
        Qualifier const& qualifier = comprehension.qualifiers[behind - 1];
        if (qualifier.pattern != no_number && find_next(qualifier)) {
            task.step = static_cast<unsigned>(2 * behind);
            return true;
        }
    }
    return false;
}

} // namespace Calder::Values
