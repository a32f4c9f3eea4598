#include "core/panic.h"
#include "values/operations.h"
#include "values/value_error.h"

#include <algorithm>

namespace Calder::Values {

Value Operations::of_sequences(Operation operation, std::span<Value const> operands) const {
    // 'elem' has what is looked for in front.
    std::size_t const first = operation == Operation::is_element ? 1 : 0;
    want(operation, operands.subspan(first), Value::Kind::sequence);
    Value const sequence = operands[first];
    std::span<Value const> const elements = m_store.elements(sequence);
    switch (operation) {
    case Operation::length: return Value::small_integer(static_cast<std::int64_t>(elements.size()));
    case Operation::is_null: return Value::truth(elements.empty());
    case Operation::is_element:
        return Value::truth(std::ranges::find(elements, operands[0]) != elements.end());
    case Operation::concatenate: return concatenated(operands);
    case Operation::concat: return concatenated_all(sequence);
    case Operation::set_of: return m_store.set(elements);
    case Operation::head:
    case Operation::tail:
        if (elements.empty()) {
            throw ValueError('\'' + std::string(symbol_of(operation)) + "' of an empty sequence");
        }
        return operation == Operation::head ? elements[0] : m_store.suffix(sequence, 1);
    default: panic(no_such_operation);
    }
}

Value Operations::concatenated(std::span<Value const> sequences) const {
    std::uint64_t size = 0;
    for (Value const sequence : sequences) {
        size += size_of(sequence);
        check_size(size, "a concatenation");
    }
    std::vector<Value> elements;
    elements.reserve(size);
    for (Value const sequence : sequences) {
        std::span<Value const> const further = m_store.elements(sequence);
        elements.insert(elements.end(), further.begin(), further.end());
    }
    return m_store.sequence(elements);
}

Value Operations::concatenated_all(Value sequences) const {
    want_elements(Operation::concat, sequences, Value::Kind::sequence);
    return concatenated(m_store.elements(sequences));
}

} // namespace Calder::Values
