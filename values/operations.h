#pragma once

#include "values/channel_table.h"
#include "values/expression.h"
#include "values/value_store.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Calder::Values {

/// Computes operations of values; what does not fit them is a ValueError that names the value.
///
/// Linear in the elements, but where a cost is told.
class Operations {
  public:
    explicit Operations(ChannelTable const& channels)
        : m_channels(channels), m_store(channels.store()) {}

    /// So many operands as the operation has.
    Value apply(Operation operation, std::span<Value const> operands) const;

  private:
    Value of_integers(Operation operation, std::span<Value const> operands) const;
    Value of_values(Operation operation, std::span<Value const> operands) const;
    Value of_sequences(Operation operation, std::span<Value const> operands) const;
    Value of_sets(Operation operation, std::span<Value const> operands) const;
    Value of_fields(Operation operation, std::span<Value const> operands) const;

    Value range(Operation operation, std::span<Value const> operands) const;
    [[noreturn]] void refuse_result(Operation operation, std::span<Value const> operands) const;

    Value concatenated(std::span<Value const> sequences) const;
    Value concatenated_all(Value sequences) const;

    Value set_union(Value left, Value right) const;
    Value intersection(Value left, Value right) const;
    Value difference(Value left, Value right) const;
    Value big_union(Value sets) const;
    Value big_intersection(Value sets) const;
    Value power_set(Value set) const;
    Value closure(std::span<Value const> beginnings) const;

    /// All of one kind, or an error.
    void want(Operation operation, std::span<Value const> operands, Value::Kind kind) const;
    void want_elements(Operation operation, Value collection, Value::Kind kind) const;
    Value checked_size(Value collection, std::string_view what) const;

    ChannelTable const& m_channels;
    ValueStore& m_store;
};

/// Said of an operation that came to where others are computed; a fault of this room.
constexpr char const* no_such_operation = "an operation is computed where it does not belong";

/// What is computed most, of two integers that fit into words; nothing for all other operations and
/// operands, which `apply` serves.
inline Value quick_result(Operation operation, std::span<Value const> operands) {
    if (operands.size() != 2 || !operands[0].is_small_integer() ||
        !operands[1].is_small_integer()) {
        return {};
    }
    std::int64_t const left = operands[0].as_integer();
    std::int64_t const right = operands[1].as_integer();
    switch (operation) {
    case Operation::add:
        return Value::is_small(left + right) ? Value::small_integer(left + right) : Value();
    case Operation::subtract:
        return Value::is_small(left - right) ? Value::small_integer(left - right) : Value();
    case Operation::less: return Value::truth(left < right);
    case Operation::at_most: return Value::truth(left <= right);
    case Operation::greater: return Value::truth(left > right);
    case Operation::at_least: return Value::truth(left >= right);
    case Operation::equal: return Value::truth(left == right);
    case Operation::differ: return Value::truth(left != right);
    default: return {};
    }
}

/// As it is written: '+', 'head', 'm..n'.
std::string_view symbol_of(Operation operation);

/// Whether the set has the value; a binary search, or one bit of a set of events.
bool has_member(ValueStore const& store, Value set, Value value);

/// An error where a sequence or a set of so many elements is too large; `what` tells what it would be.
void check_size(std::uint64_t size, std::string_view what);

} // namespace Calder::Values
