#include "core/panic.h"
#include "values/limits.h"
#include "values/operations.h"
#include "values/value_error.h"

#include <algorithm>
#include <bit>

namespace Calder::Values {

namespace {

bool are_event_sets(Value left, Value right) {
    return is_event_set(left) && is_event_set(right);
}

BitSet common(BitSet const& left, BitSet const& right) {
    return left.without(left.without(right));
}

} // namespace

Value Operations::of_sets(Operation operation, std::span<Value const> operands) const {
    // 'member' has what is looked for in front.
    std::size_t const first = operation == Operation::is_member ? 1 : 0;
    want(operation, operands.subspan(first), Value::Kind::set);
    Value const set = operands[first];
    switch (operation) {
    case Operation::sequence_of: return m_store.sequence(m_store.elements(set));
    case Operation::set_union: return set_union(set, operands[1]);
    case Operation::intersection: return intersection(set, operands[1]);
    case Operation::difference: return difference(set, operands[1]);
    case Operation::is_member: return Value::truth(has_member(m_store, set, operands[0]));
    case Operation::cardinality:
        return Value::small_integer(static_cast<std::int64_t>(size_of(set)));
    case Operation::is_empty: return Value::truth(size_of(set) == 0);
    case Operation::big_union: return big_union(set);
    case Operation::big_intersection: return big_intersection(set);
    case Operation::power_set: return power_set(set);
    default: panic(no_such_operation);
    }
}

Value Operations::set_union(Value left, Value right) const {
    if (are_event_sets(left, right)) {
        BitSet events = events_of(left);
        events.setunion(events_of(right));
        return m_store.event_set(std::move(events));
    }
    std::vector<Value> elements;
    std::ranges::set_union(m_store.elements(left), m_store.elements(right),
                           std::back_inserter(elements), is_before);
    check_size(elements.size(), "a union");
    return m_store.set_from_sorted(elements);
}

Value Operations::intersection(Value left, Value right) const {
    if (are_event_sets(left, right)) {
        return m_store.event_set(common(events_of(left), events_of(right)));
    }
    std::vector<Value> elements;
    std::ranges::set_intersection(m_store.elements(left), m_store.elements(right),
                                  std::back_inserter(elements), is_before);
    return m_store.set_from_sorted(elements);
}

Value Operations::difference(Value left, Value right) const {
    if (are_event_sets(left, right)) {
        return m_store.event_set(events_of(left).without(events_of(right)));
    }
    std::vector<Value> elements;
    std::ranges::set_difference(m_store.elements(left), m_store.elements(right),
                                std::back_inserter(elements), is_before);
    return m_store.set_from_sorted(elements);
}

Value Operations::big_union(Value sets) const {
    want_elements(Operation::big_union, sets, Value::Kind::set);
    std::span<Value const> const all = m_store.elements(sets);
    if (std::ranges::all_of(all, is_event_set)) {
        BitSet events;
        for (Value const set : all) {
            events.setunion(events_of(set));
        }
        return m_store.event_set(std::move(events));
    }
    std::vector<Value> elements;
    for (Value const set : all) {
        std::span<Value const> const further = m_store.elements(set);
        elements.insert(elements.end(), further.begin(), further.end());
        if (elements.size() > 2 * largest_collection) {
            std::ranges::sort(elements, is_before);
            elements.erase(std::unique(elements.begin(), elements.end()), elements.end());
            check_size(elements.size(), "a union");
        }
    }
    return checked_size(m_store.set(elements), "a union");
}

Value Operations::big_intersection(Value sets) const {
    want_elements(Operation::big_intersection, sets, Value::Kind::set);
    std::span<Value const> const all = m_store.elements(sets);
    if (all.empty()) {
        throw ValueError("'Inter' of the empty set");
    }
    Value left = all[0];
    for (Value const set : all.subspan(1)) {
        left = intersection(left, set);
    }
    return left;
}

/// In the order of sets: behind each one those that it begins.
Value Operations::power_set(Value set) const {
    std::span<Value const> const elements = m_store.elements(set);
    if (elements.size() >= std::bit_width(largest_collection)) {
        throw ValueError("the sets of elements of a set of " + std::to_string(elements.size()) +
                         " are more than " + std::to_string(largest_collection));
    }
    std::vector<Value> subsets = {m_store.event_set({})};
    std::vector<Value> subset;
    std::vector<std::size_t> places; // of the elements of `subset`
    for (std::size_t next = 0; next < elements.size() || !places.empty();) {
        if (next == elements.size()) {
            next = places.back() + 1;
            places.pop_back();
            subset.pop_back();
            continue;
        }
        places.push_back(next);
        subset.push_back(elements[next]);
        subsets.push_back(m_store.set_from_sorted(subset));
        ++next;
    }
    return m_store.set_from_sorted(subsets);
}

bool has_member(ValueStore const& store, Value set, Value value) {
    if (is_event_set(set)) {
        return value.is(Value::Kind::event) && events_of(set).member(value.as_event());
    }
    return std::ranges::binary_search(store.elements(set), value, is_before);
}

} // namespace Calder::Values
