#include "values/operations.h"

#include "core/panic.h"
#include "values/limits.h"
#include "values/text.h"
#include "values/value_error.h"

#include <algorithm>

namespace Calder::Values {

namespace {

void refuse_zero(std::int64_t dividend, char const* sign, std::int64_t divisor) {
    if (divisor == 0) {
        throw ValueError(std::to_string(dividend) + ' ' + sign + " 0: division by zero");
    }
}

/// With the sign of the divisor, so that it goes with a division that rounds down.
std::int64_t remainder_of(std::int64_t dividend, std::int64_t divisor) {
    refuse_zero(dividend, "%", divisor);
    if (divisor == -1) {
        return 0; // also of the smallest integer, where the processor would trap
    }
    std::int64_t const remainder = dividend % divisor;
    return remainder != 0 && (remainder < 0) != (divisor < 0) ? remainder + divisor : remainder;
}

/// Whether the quotient, rounded down, overflows.
bool divide(std::int64_t dividend, std::int64_t divisor, std::int64_t& quotient) {
    refuse_zero(dividend, "/", divisor);
    if (divisor == -1) {
        return __builtin_sub_overflow(0, dividend, &quotient);
    }
    quotient = dividend / divisor - (remainder_of(dividend, divisor) != dividend % divisor ? 1 : 0);
    return false;
}

} // namespace

Value Operations::apply(Operation operation, std::span<Value const> operands) const {
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
    case Operation::at_least: return of_integers(operation, operands);
    case Operation::sequence_range:
    case Operation::set_range: return range(operation, operands);
    case Operation::equal:
    case Operation::differ:
    case Operation::negation:
    case Operation::tuple:
    case Operation::sequence:
    case Operation::set: return of_values(operation, operands);
    case Operation::concatenate:
    case Operation::length:
    case Operation::head:
    case Operation::tail:
    case Operation::is_null:
    case Operation::is_element:
    case Operation::concat:
    case Operation::set_of: return of_sequences(operation, operands);
    case Operation::sequence_of:
    case Operation::set_union:
    case Operation::intersection:
    case Operation::difference:
    case Operation::is_member:
    case Operation::cardinality:
    case Operation::is_empty:
    case Operation::big_union:
    case Operation::big_intersection:
    case Operation::power_set: return of_sets(operation, operands);
    case Operation::dot:
    case Operation::closure:
    case Operation::field_values: return of_fields(operation, operands);
    }
    return {};
}

Value Operations::of_integers(Operation operation, std::span<Value const> operands) const {
    want(operation, operands, Value::Kind::integer);
    std::int64_t const left = operands[0].as_integer();
    std::int64_t const right = operands.size() > 1 ? operands[1].as_integer() : 0;
    std::int64_t result = 0;
    bool overflows = false;
    switch (operation) {
    case Operation::add: overflows = __builtin_add_overflow(left, right, &result); break;
    case Operation::subtract: overflows = __builtin_sub_overflow(left, right, &result); break;
    case Operation::multiply: overflows = __builtin_mul_overflow(left, right, &result); break;
    case Operation::negate: overflows = __builtin_sub_overflow(0, left, &result); break;
    case Operation::divide: overflows = divide(left, right, result); break;
    case Operation::remainder: result = remainder_of(left, right); break;
    case Operation::less: return Value::truth(left < right);
    case Operation::at_most: return Value::truth(left <= right);
    case Operation::greater: return Value::truth(left > right);
    case Operation::at_least: return Value::truth(left >= right);
    default: panic(no_such_operation);
    }
    if (overflows) {
        refuse_result(operation, operands);
    }
    return m_store.integer(result);
}

void Operations::refuse_result(Operation operation, std::span<Value const> operands) const {
    std::string const first = std::to_string(operands[0].as_integer());
    std::string const sign(symbol_of(operation));
    std::string const result = operation == Operation::negate
                                   ? "negative of " + first
                                   : std::string(operation == Operation::add        ? "sum "
                                                 : operation == Operation::subtract ? "difference "
                                                 : operation == Operation::multiply ? "product "
                                                                                    : "quotient ") +
                                         first + ' ' + sign + ' ' +
                                         std::to_string(operands[1].as_integer());
    throw ValueError("the " + result + " does not fit into 64 bits");
}

Value Operations::range(Operation operation, std::span<Value const> operands) const {
    want(operation, operands, Value::Kind::integer);
    std::int64_t const first = operands[0].as_integer();
    std::int64_t const last = operands[1].as_integer();
    std::vector<Value> elements;
    if (first <= last) {
        // One less than there are, which always fits.
        std::uint64_t const steps =
            static_cast<std::uint64_t>(last) - static_cast<std::uint64_t>(first);
        if (steps >= largest_collection) {
            throw ValueError("the range " + std::to_string(first) + ".." + std::to_string(last) +
                             " has more than " + std::to_string(largest_collection) + " elements");
        }
        elements.reserve(steps + 1);
        for (std::uint64_t step = 0; step <= steps; ++step) {
            elements.push_back(m_store.integer(first + static_cast<std::int64_t>(step)));
        }
    }
    return operation == Operation::set_range ? m_store.set_from_sorted(elements)
                                             : m_store.sequence(elements);
}

Value Operations::of_values(Operation operation, std::span<Value const> operands) const {
    switch (operation) {
    case Operation::equal: return Value::truth(operands[0] == operands[1]);
    case Operation::differ: return Value::truth(operands[0] != operands[1]);
    case Operation::tuple: return m_store.tuple(operands);
    case Operation::sequence:
        check_size(operands.size(), "a sequence");
        return m_store.sequence(operands);
    case Operation::set: return checked_size(m_store.set(operands), "a set");
    case Operation::negation:
        want(operation, operands, Value::Kind::truth);
        return Value::truth(!operands[0].as_truth());
    default: panic(no_such_operation);
    }
}

Value Operations::of_fields(Operation operation, std::span<Value const> operands) const {
    switch (operation) {
    case Operation::dot: return m_channels.with_fields(operands[0], operands.subspan(1));
    case Operation::closure: return closure(operands);
    case Operation::field_values:
        return m_channels.field_values(operands[0],
                                       static_cast<unsigned>(operands[1].as_integer()));
    default: panic(no_such_operation);
    }
}

Value Operations::closure(std::span<Value const> beginnings) const {
    BitSet events;
    for (Value const beginning : beginnings) {
        m_channels.insert_closure(beginning, events);
    }
    return m_store.event_set(std::move(events));
}

void Operations::want(Operation operation, std::span<Value const> operands,
                      Value::Kind kind) const {
    for (Value const operand : operands) {
        if (!operand.is(kind)) {
            std::string const wanted(name_of(kind));
            throw ValueError(
                '\'' + std::string(symbol_of(operation)) + "' wants " +
                (operands.size() > 1 ? wanted.substr(wanted.find(' ') + 1) + 's' : wanted) +
                ", and " + short_text_of(m_channels, operand) + " is " +
                std::string(name_of(operand.kind())));
        }
    }
}

void Operations::want_elements(Operation operation, Value collection, Value::Kind kind) const {
    for (Value const element : m_store.elements(collection)) {
        if (!element.is(kind)) {
            std::string const wanted(name_of(kind));
            throw ValueError('\'' + std::string(symbol_of(operation)) + "' wants " + wanted +
                             " of " + wanted.substr(wanted.find(' ') + 1) + "s, and " +
                             short_text_of(m_channels, element) + " is " +
                             std::string(name_of(element.kind())));
        }
    }
}

Value Operations::checked_size(Value collection, std::string_view what) const {
    check_size(size_of(collection), what);
    return collection;
}

void check_size(std::uint64_t size, std::string_view what) {
    if (size > largest_collection) {
        throw ValueError(std::string(what) + " has more than " +
                         std::to_string(largest_collection) + " elements");
    }
}

std::string_view symbol_of(Operation operation) {
    switch (operation) {
    case Operation::add: return "+";
    case Operation::subtract:
    case Operation::negate: return "-";
    case Operation::multiply: return "*";
    case Operation::divide: return "/";
    case Operation::remainder: return "%";
    case Operation::less: return "<";
    case Operation::at_most: return "<=";
    case Operation::greater: return ">";
    case Operation::at_least: return ">=";
    case Operation::equal: return "==";
    case Operation::differ: return "!=";
    case Operation::negation: return "not";
    case Operation::tuple: return "( , )";
    case Operation::sequence: return "< >";
    case Operation::sequence_range: return "m..n";
    case Operation::concatenate: return "^";
    case Operation::length: return "#";
    case Operation::head: return "head";
    case Operation::tail: return "tail";
    case Operation::is_null: return "null";
    case Operation::is_element: return "elem";
    case Operation::concat: return "concat";
    case Operation::sequence_of: return "seq";
    case Operation::set: return "{ }";
    case Operation::set_range: return "m..n";
    case Operation::set_union: return "union";
    case Operation::intersection: return "inter";
    case Operation::difference: return "diff";
    case Operation::is_member: return "member";
    case Operation::cardinality: return "card";
    case Operation::is_empty: return "empty";
    case Operation::big_union: return "Union";
    case Operation::big_intersection: return "Inter";
    case Operation::power_set: return "Set";
    case Operation::set_of: return "set";
    case Operation::dot: return ".";
    case Operation::closure: return "{| |}";
    case Operation::field_values: return "?";
    }
    return {};
}

} // namespace Calder::Values
