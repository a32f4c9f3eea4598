#pragma once

#include "values/value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Calder::Values {

class ValueStore;

/// A table from values to numbers: open addressing, at most half full.
class PlaceTable {
  public:
    /// False, and nothing happens, where the value is there already.
    bool insert(Value value, unsigned place);
    std::optional<unsigned> find(Value value) const;

  private:
    struct Entry {
        Value value;
        unsigned place = 0;
    };

    std::size_t slot_of(Value value) const;
    void grow();

    std::vector<Entry> m_entries;
    std::size_t m_count = 0;
};

/// What one declared field ranges over, in its given order.
class Field {
  public:
    /// Of distinct values. Consecutive integers are recognised and take no table.
    Field(ValueStore& store, std::vector<Value> values);

    std::vector<Value> const& values() const { return m_values; }
    /// Where a value stands, if it does.
    std::optional<unsigned> place_of(Value value) const;
    /// How many components its values have (1, or more for data.0), each number once, ascending.
    std::vector<unsigned> const& lengths() const { return m_lengths; }
    /// Where one of the values stands that begins as this one, a name or a dotted value, and has
    /// more fields.
    std::optional<unsigned> longer_than(Value value) const;

  private:
    std::vector<Value> m_values;
    std::optional<std::int64_t> m_first_integer; // of consecutive ones
    PlaceTable m_places;
    PlaceTable m_beginnings;
    std::vector<unsigned> m_lengths;
};

/// The declared fields of a channel or of a name. What fills them is held flattened: the values
/// 1 and data.0 as the components 1, data, 0.
class FieldList {
  public:
    FieldList() : m_count_from{1} {}
    /// Of lists of distinct values. A ValueError where one value of a field begins as another one
    /// does, as data and data.0 do: what follows would not tell which one is meant.
    FieldList(ValueStore& store, std::vector<std::vector<Value>> const& fields);

    std::size_t size() const { return m_fields.size(); }
    Field const& operator[](std::size_t index) const { return m_fields[index]; }
    /// How many ways there are to fill the fields; 2^32 stands for any more.
    std::uint64_t count() const { return m_count_from[0]; }
    /// How many ways there are to fill the fields from this one on.
    std::uint64_t count_from(std::size_t field) const { return m_count_from[field]; }

    /// How far components fill the fields, one after the other.
    struct Filling {
        std::size_t fields = 0;     // so many are filled
        std::size_t components = 0; // by so many
        std::uint64_t number = 0;   // which way to fill these fields, the last one running fastest
        /// Whether nothing is left, or how a value of the next field begins.
        bool fits = true;
    };
    Filling fill(ValueStore& store, std::span<Value const> components) const;

    /// Appends the values that fill the fields in way `number`.
    void append_values(std::uint64_t number, std::vector<Value>& values) const;

  private:
    std::vector<Field> m_fields;
    std::vector<std::uint64_t> m_count_from; // one more than there are fields
};

/// The value that components are: a single one, or a name with its fields; nothing of others.
Value joined(ValueStore& store, std::span<Value const> components);

/// How many of the components, one or more, are the first value among them: a name takes as many
/// values behind it as it has declared fields.
std::size_t first_extent(ValueStore const& store, std::span<Value const> components);

} // namespace Calder::Values
