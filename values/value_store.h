#pragma once

#include "core/bit_set.h"
#include "values/arena.h"
#include "values/field_list.h"
#include "values/value.h"

#include <compare>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Calder::Values {

/// Owns what does not fit into the word of a value, each once: equal values are one node. Nothing is
/// freed before the store is. No order and no hash code depends on an address.
///
/// What nests deeper than `value_nesting_limit` is refused with a ValueError. Not for several threads.
class ValueStore {
  public:
    ValueStore();
    ValueStore(ValueStore const&) = delete;
    ValueStore& operator=(ValueStore const&) = delete;

    Value integer(std::int64_t value);

    /// Declares the name if it is new; the order of names is that of their declarations.
    Value name(std::string const& text);
    /// Nothing where no such name was declared.
    Value find_name(std::string_view text) const;
    /// What the fields of a name range over, each a list of distinct values. A name without such a
    /// declaration takes no fields.
    void declare_fields(Value name, std::vector<std::vector<Value>> const& fields);
    /// Of a name or a dotted value.
    FieldList const& fields_of(Value name) const { return m_names[name.node().number].fields; }
    std::string const& text_of_name(Value name) const { return m_names[name.node().number].text; }
    /// The name of a dotted value; a name itself.
    Value head(Value dotted) const { return m_names[dotted.node().number].value; }

    /// The channel of this number (any; given by whoever declares channels) without fields yet.
    Value channel(unsigned number, std::string const& name);
    /// One that was given.
    Value channel_value(unsigned number) const { return m_channels[number].value; }
    std::string const& text_of_channel(unsigned number) const { return m_channels[number].text; }

    /// Two parts or more.
    Value tuple(std::span<Value const> parts);
    Value sequence(std::span<Value const> elements);
    /// What stands behind the first `count` elements; shares their memory, so constant in time and
    /// space unless the elements nest unevenly.
    Value suffix(Value sequence, std::size_t count);
    /// The elements in any order, and more than once.
    Value set(std::span<Value const> elements);
    /// The elements in ascending order, each once.
    Value set_from_sorted(std::span<Value const> elements);
    Value event_set(BitSet events);
    /// A name or a channel, or one with components already, with further ones behind: a name or a
    /// dotted value adds itself as several. Not held against any declaration (ChannelTable does).
    Value dotted(Value head, std::span<Value const> components);

    /// Of a tuple, a sequence or a set; the components of a dotted value or a channel; nothing of
    /// any other value. Those of a set of events are written out when first asked for, and kept.
    std::span<Value const> elements(Value value) const;

  private:
    struct Name {
        std::string text;
        Value value;
        FieldList fields;
    };
    struct Channel {
        std::string text;
        Value value;
    };

    Value of_elements(Node node, std::span<Value const> elements);
    Value interned(Node const& node, bool shares_elements = false);
    std::size_t slot_of(Node const& node) const;
    void grow();

    Arena m_arena;
    std::vector<Node const*> m_table; // open addressing
    std::size_t m_count = 0;
    std::deque<Name> m_names;
    std::unordered_map<std::string_view, Value> m_names_by_text;
    std::vector<Channel> m_channels;
    std::deque<BitSet> m_event_sets;
    std::vector<Value> m_room; // for one call
    mutable std::unordered_map<Node const*, std::vector<Value>> m_written_out;
};

/// The set is of events only, or empty.
inline bool is_event_set(Value set) {
    return set.is(Value::Kind::set) && set.node().holds_events;
}
/// Of a set that is_event_set.
BitSet const& events_of(Value set);
/// How many elements a tuple, a sequence or a set has.
inline std::size_t size_of(Value value) {
    return value.node().size;
}

/// The order of values: truth values, integers, names alone and with fields (by the order of names,
/// then field by field), complete events (by number), channels (by channel, then field by field),
/// tuples, sequences, sets; the last three element by element, what ends first first.
std::strong_ordering compare(Value left, Value right);
inline bool is_before(Value left, Value right) {
    return std::is_lt(compare(left, right));
}

/// How many components the value has as a field of another one: itself, or its name and fields.
std::size_t component_count(Value value);

} // namespace Calder::Values
