#include "values/value_store.h"

#include "core/hash_combine.h"
#include "values/limits.h"
#include "values/value_error.h"

#include <algorithm>
#include <bit>

namespace Calder::Values {

namespace {

// The base of the polynomials is odd, so division by it is multiplication by its inverse.
constexpr std::uint64_t base = 0x9e3779b97f4a7c15;

constexpr std::uint64_t inverse_of(std::uint64_t odd) {
    std::uint64_t inverse = odd; // right in three bits; each step (Newton's) doubles them
    for (unsigned bits = 3; bits < 64; bits *= 2) {
        inverse *= 2 - odd * inverse;
    }
    return inverse;
}
constexpr std::uint64_t inverse_base = inverse_of(base);
static_assert(base * inverse_base == 1);

constexpr std::size_t first_table_size = 1024;

std::uint64_t hash_of(Node const& node) {
    std::uint64_t const kind = static_cast<std::uint64_t>(node.kind);
    return hash_combine(hash_combine(kind << 32 | node.number, node.size), node.polynomial);
}

std::uint64_t hash_of(Value value) {
    switch (value.kind()) {
    case Value::Kind::none:
    case Value::Kind::truth:
    case Value::Kind::event:
    case Value::Kind::foreign: return hash_combine(1, value.word());
    case Value::Kind::integer:
        return hash_combine(2, static_cast<std::uint64_t>(value.as_integer()));
    case Value::Kind::name:
    case Value::Kind::dotted:
    case Value::Kind::channel:
    case Value::Kind::tuple:
    case Value::Kind::sequence:
    case Value::Kind::set: return hash_of(value.node());
    }
    return 0;
}

std::uint64_t polynomial_of(std::span<Value const> elements) {
    std::uint64_t sum = 0;
    for (std::size_t index = elements.size(); index > 0; --index) {
        sum = sum * base + hash_of(elements[index - 1]);
    }
    return sum;
}

/// Adds up words of the bit map that are not zero, each mixed with its place.
std::uint64_t polynomial_of(BitSet const& events) {
    std::uint64_t sum = 0;
    std::uint64_t word = 0;
    unsigned place = 0;
    for (unsigned const event : events) {
        if (event / 64 != place) {
            sum += hash_combine(place, word);
            word = 0;
            place = event / 64;
        }
        word |= std::uint64_t{1} << event % 64;
    }
    return sum + hash_combine(place, word);
}

bool is_same(Node const& left, Node const& right) {
    if (left.kind != right.kind || left.holds_events != right.holds_events ||
        left.number != right.number || left.polynomial != right.polynomial ||
        left.size != right.size) {
        return false;
    }
    if (left.holds_events) {
        return *left.events == *right.events;
    }
    return left.kind == Value::Kind::integer || left.first == right.first ||
           std::ranges::equal(left.elements(), right.elements());
}

bool is_node(Value value) {
    return value.is(Value::Kind::name) || value.is(Value::Kind::dotted) ||
           value.is(Value::Kind::channel) || value.is(Value::Kind::tuple) ||
           value.is(Value::Kind::sequence) || value.is(Value::Kind::set);
}

std::uint16_t depth_of(Value value) {
    return is_node(value) ? value.node().depth : std::uint16_t{0};
}

std::uint16_t depth_around(std::span<Value const> elements) {
    std::uint16_t deepest = 0;
    for (Value const element : elements) {
        deepest = std::max(deepest, depth_of(element));
    }
    if (deepest >= value_nesting_limit) {
        throw ValueError("the values nest too deeply: more than " +
                         std::to_string(value_nesting_limit) + " within each other");
    }
    return static_cast<std::uint16_t>(deepest + 1);
}

Node node_of(Value::Kind kind, std::uint32_t number = 0) {
    Node node;
    node.kind = kind;
    node.number = number;
    return node;
}

bool is_event(Value value) {
    return value.is(Value::Kind::event);
}

BitSet bits_of(std::span<Value const> events) {
    BitSet bits;
    for (Value const event : events) {
        bits.insert(event.as_event());
    }
    return bits;
}

} // namespace

ValueStore::ValueStore() : m_table(first_table_size) {}

Value ValueStore::integer(std::int64_t value) {
    if (Value::is_small(value)) {
        return Value::small_integer(value);
    }
    Node node = node_of(Value::Kind::integer);
    node.size = static_cast<std::uint64_t>(value);
    return interned(node);
}

Value ValueStore::name(std::string const& text) {
    if (Value const known = find_name(text)) {
        return known;
    }
    Name& added = m_names.emplace_back();
    added.text = text;
    auto const number = static_cast<std::uint32_t>(m_names.size() - 1);
    added.value = interned(node_of(Value::Kind::name, number));
    m_names_by_text.emplace(added.text, added.value);
    return added.value;
}

Value ValueStore::find_name(std::string_view text) const {
    auto const found = m_names_by_text.find(text);
    return found == m_names_by_text.end() ? Value() : found->second;
}

void ValueStore::declare_fields(Value name, std::vector<std::vector<Value>> const& fields) {
    m_names[name.node().number].fields = FieldList(*this, fields);
}

Value ValueStore::channel(unsigned number, std::string const& name) {
    if (number >= m_channels.size()) {
        m_channels.resize(number + 1);
    }
    m_channels[number] = {name, interned(node_of(Value::Kind::channel, number))};
    return m_channels[number].value;
}

Value ValueStore::tuple(std::span<Value const> parts) {
    return of_elements(node_of(Value::Kind::tuple), parts);
}

Value ValueStore::sequence(std::span<Value const> elements) {
    return of_elements(node_of(Value::Kind::sequence), elements);
}

Value ValueStore::suffix(Value sequence, std::size_t count) {
    Node node = sequence.node();
    for (Value const left_out : node.elements().first(count)) {
        node.polynomial = (node.polynomial - hash_of(left_out)) * inverse_base;
    }
    node.first += count;
    node.size -= count;
    // Most often the first element that is left is as deep as any.
    auto const is_deepest = [&](Value element) { return depth_of(element) + 1 == node.depth; };
    if (node.depth > 1 && std::ranges::none_of(node.elements(), is_deepest)) {
        node.depth = depth_around(node.elements());
    }
    return interned(node, true);
}

Value ValueStore::set(std::span<Value const> elements) {
    if (std::ranges::all_of(elements, is_event)) {
        return event_set(bits_of(elements));
    }
    m_room.assign(elements.begin(), elements.end());
    std::ranges::sort(m_room, is_before);
    m_room.erase(std::unique(m_room.begin(), m_room.end()), m_room.end());
    return of_elements(node_of(Value::Kind::set), m_room);
}

Value ValueStore::set_from_sorted(std::span<Value const> elements) {
    // In their order, everything that is no event stands before or behind all events.
    if (elements.empty() || (is_event(elements.front()) && is_event(elements.back()))) {
        return event_set(bits_of(elements));
    }
    return of_elements(node_of(Value::Kind::set), elements);
}

Value ValueStore::event_set(BitSet events) {
    Node node = node_of(Value::Kind::set);
    node.holds_events = true;
    node.depth = 1;
    node.size = events.size();
    node.polynomial = polynomial_of(events);
    node.events = &events;
    Node const* const known = m_table[slot_of(node)];
    if (known != nullptr) {
        return Value::of_node(known);
    }
    node.events = &m_event_sets.emplace_back(std::move(events));
    return interned(node, true);
}

Value ValueStore::dotted(Value head, std::span<Value const> components) {
    if (components.empty()) {
        return head;
    }
    Node const& begun = head.node();
    m_room.assign(begun.elements().begin(), begun.elements().end());
    for (Value const component : components) {
        if (component.is(Value::Kind::dotted)) {
            m_room.push_back(this->head(component));
            std::span<Value const> const further = component.node().elements();
            m_room.insert(m_room.end(), further.begin(), further.end());
        } else {
            m_room.push_back(component);
        }
    }
    auto const kind = head.is(Value::Kind::channel) ? Value::Kind::channel : Value::Kind::dotted;
    return of_elements(node_of(kind, begun.number), m_room);
}

std::span<Value const> ValueStore::elements(Value value) const {
    if (!is_node(value)) {
        return {};
    }
    Node const& node = value.node();
    if (!node.holds_events) {
        return node.elements();
    }
    std::vector<Value>& written_out = m_written_out[&node];
    if (written_out.size() != node.size) {
        written_out.reserve(node.size);
        for (unsigned const event : *node.events) {
            written_out.push_back(Value::event(event));
        }
    }
    return written_out;
}

Value ValueStore::of_elements(Node node, std::span<Value const> elements) {
    node.depth = depth_around(elements);
    node.polynomial = polynomial_of(elements);
    node.size = elements.size();
    node.first = elements.data();
    return interned(node);
}

/// The one node with this content. The elements are copied unless they stay where they are.
Value ValueStore::interned(Node const& node, bool shares_elements) {
    std::size_t const slot = slot_of(node);
    if (m_table[slot] != nullptr) {
        return Value::of_node(m_table[slot]);
    }
    Node* const added = new (m_arena.allocate<Node>(1)) Node(node);
    if (!shares_elements && node.kind != Value::Kind::integer) {
        added->first = m_arena.copy(node.elements());
    }
    m_table[slot] = added;
    if (++m_count * 2 > m_table.size()) {
        grow();
    }
    return Value::of_node(added);
}

/// Where the node stands, or the free slot where it belongs.
std::size_t ValueStore::slot_of(Node const& node) const {
    std::uint64_t const hash = hash_of(node);
    std::size_t const mask = m_table.size() - 1;
    std::size_t slot = (hash ^ hash >> 32) & mask; // the code is even
    while (m_table[slot] != nullptr && !is_same(*m_table[slot], node)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void ValueStore::grow() {
    std::vector<Node const*> before(m_table.size() * 2);
    before.swap(m_table);
    for (Node const* const node : before) {
        if (node != nullptr) {
            m_table[slot_of(*node)] = node;
        }
    }
}

BitSet const& events_of(Value set) {
    return *set.node().events;
}

std::size_t component_count(Value value) {
    return value.is(Value::Kind::dotted) ? value.node().size + 1 : 1;
}

} // namespace Calder::Values
