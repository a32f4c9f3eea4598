#include "core/bit_set.h"
#include "values/value_store.h"

namespace Calder::Values {

namespace {

/// What stands before what where the kinds differ; a name alone is like one with fields.
unsigned rank_of(Value::Kind kind) {
    switch (kind) {
    case Value::Kind::none: return 0;
    case Value::Kind::truth: return 1;
    case Value::Kind::integer: return 2;
    case Value::Kind::name:
    case Value::Kind::dotted: return 3;
    case Value::Kind::event: return 4;
    case Value::Kind::channel: return 5;
    case Value::Kind::tuple: return 6;
    case Value::Kind::sequence: return 7;
    case Value::Kind::set: return 8;
    case Value::Kind::foreign: return 9;
    }
    return 0;
}

Value as_value(Value value) {
    return value;
}
Value as_value(unsigned event) {
    return Value::event(event);
}

/// Element by element; never looks behind the first two that differ.
template <typename Left, typename Right>
std::strong_ordering compare_elements(Left const& left, Right const& right) {
    auto other = right.begin();
    for (auto const& element : left) {
        if (other == right.end()) {
            return std::strong_ordering::greater;
        }
        auto const order = compare(as_value(element), as_value(*other));
        if (std::is_neq(order)) {
            return order;
        }
        ++other;
    }
    return other == right.end() ? std::strong_ordering::equal : std::strong_ordering::less;
}

std::strong_ordering compare_sets(Node const& left, Node const& right) {
    if (left.holds_events) {
        return right.holds_events ? compare_elements(*left.events, *right.events)
                                  : compare_elements(*left.events, right.elements());
    }
    return right.holds_events ? compare_elements(left.elements(), *right.events)
                              : compare_elements(left.elements(), right.elements());
}

std::strong_ordering compare_nodes(Node const& left, Node const& right) {
    if (left.kind == Value::Kind::set) {
        return compare_sets(left, right);
    }
    auto const order = left.number <=> right.number;
    return std::is_neq(order) ? order : compare_elements(left.elements(), right.elements());
}

} // namespace

std::strong_ordering compare(Value left, Value right) {
    if (left == right) {
        return std::strong_ordering::equal;
    }
    Value::Kind const kind = left.kind();
    auto const order = rank_of(kind) <=> rank_of(right.kind());
    if (std::is_neq(order)) {
        return order;
    }
    switch (kind) {
    case Value::Kind::integer: return left.as_integer() <=> right.as_integer();
    case Value::Kind::none:
    case Value::Kind::truth:
    case Value::Kind::event:
    case Value::Kind::foreign: return left.word() <=> right.word();
    case Value::Kind::name:
    case Value::Kind::dotted:
    case Value::Kind::channel:
    case Value::Kind::tuple:
    case Value::Kind::sequence:
    case Value::Kind::set: return compare_nodes(left.node(), right.node());
    }
    return order;
}

} // namespace Calder::Values
