#include "values/field_list.h"

#include "values/text.h"
#include "values/value_error.h"
#include "values/value_store.h"

#include <algorithm>

namespace Calder::Values {

namespace {

constexpr std::uint64_t countless = std::uint64_t{1} << 32;
constexpr std::size_t first_table_size = 16;

bool are_consecutive(std::vector<Value> const& values) {
    for (std::size_t index = 0; index < values.size(); ++index) {
        if (!values[index].is(Value::Kind::integer) ||
            (index > 0 && values[index - 1].as_integer() + 1 != values[index].as_integer())) {
            return false;
        }
    }
    return !values.empty();
}

} // namespace

bool PlaceTable::insert(Value value, unsigned place) {
    if (m_count * 2 >= m_entries.size()) {
        grow();
    }
    Entry& entry = m_entries[slot_of(value)];
    if (entry.value) {
        return false;
    }
    entry = {value, place};
    ++m_count;
    return true;
}

std::optional<unsigned> PlaceTable::find(Value value) const {
    if (m_entries.empty() || !value) {
        return std::nullopt;
    }
    Entry const& entry = m_entries[slot_of(value)];
    return entry.value ? std::optional(entry.place) : std::nullopt;
}

/// Where the value stands, or the free slot where it belongs.
std::size_t PlaceTable::slot_of(Value value) const {
    std::uint64_t const hash = value.word() * 0x9e3779b97f4a7c15;
    std::size_t const mask = m_entries.size() - 1;
    std::size_t slot = (hash >> 32) & mask;
    while (m_entries[slot].value && m_entries[slot].value != value) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void PlaceTable::grow() {
    std::vector<Entry> before(std::max(m_entries.size() * 2, first_table_size));
    before.swap(m_entries);
    for (Entry const& entry : before) {
        if (entry.value) {
            m_entries[slot_of(entry.value)] = entry;
        }
    }
}

Field::Field(ValueStore& store, std::vector<Value> values) : m_values(std::move(values)) {
    if (are_consecutive(m_values)) {
        m_first_integer = m_values.front().as_integer();
        m_lengths = {1};
        return;
    }
    for (std::size_t index = 0; index < m_values.size(); ++index) {
        Value const value = m_values[index];
        m_places.insert(value, static_cast<unsigned>(index));
        auto const length = static_cast<unsigned>(component_count(value));
        if (std::ranges::find(m_lengths, length) == m_lengths.end()) {
            m_lengths.push_back(length);
        }
        // From the longest beginning on: where one is known, so are those that are shorter.
        for (std::size_t shorter = length - 1; shorter > 0; --shorter) {
            if (!m_beginnings.insert(
                    store.dotted(store.head(value), store.elements(value).first(shorter - 1)),
                    static_cast<unsigned>(index))) {
                break;
            }
        }
    }
    std::ranges::sort(m_lengths);
}

std::optional<unsigned> Field::place_of(Value value) const {
    if (!m_first_integer) {
        return m_places.find(value);
    }
    if (!value.is(Value::Kind::integer)) {
        return std::nullopt;
    }
    // What is smaller than the first one comes round to the largest numbers.
    std::uint64_t const place = static_cast<std::uint64_t>(value.as_integer()) -
                                static_cast<std::uint64_t>(*m_first_integer);
    return place < m_values.size() ? std::optional(static_cast<unsigned>(place)) : std::nullopt;
}

std::optional<unsigned> Field::longer_than(Value value) const {
    return m_beginnings.find(value);
}

FieldList::FieldList(ValueStore& store, std::vector<std::vector<Value>> const& fields)
    : m_count_from(fields.size() + 1, 1) {
    m_fields.reserve(fields.size());
    for (std::vector<Value> const& values : fields) {
        m_fields.emplace_back(store, values);
        for (Value const value : values) {
            if (m_fields.back().longer_than(value)) {
                throw ValueError("a field cannot have the value '" + store.text_of_name(value) +
                                 "' and others that begin so");
            }
        }
    }
    for (std::size_t field = fields.size(); field > 0; --field) {
        m_count_from[field - 1] =
            std::min(countless, m_count_from[field] * fields[field - 1].size());
    }
}

FieldList::Filling FieldList::fill(ValueStore& store, std::span<Value const> components) const {
    Filling filling;
    while (filling.components < components.size() && filling.fields < m_fields.size()) {
        Field const& field = m_fields[filling.fields];
        std::span<Value const> const rest = components.subspan(filling.components);
        std::optional<unsigned> place;
        std::size_t taken = 0;
        // No value begins as another one does, so at most one length fits.
        for (unsigned const length : field.lengths()) {
            if (!place && length <= rest.size()) {
                taken = length;
                place = field.place_of(joined(store, rest.first(length)));
            }
        }
        if (!place) {
            filling.fits = field.longer_than(joined(store, rest)).has_value();
            return filling;
        }
        filling.number = filling.number * field.values().size() + *place;
        filling.components += taken;
        ++filling.fields;
    }
    filling.fits = filling.components == components.size();
    return filling;
}

void FieldList::append_values(std::uint64_t number, std::vector<Value>& values) const {
    values.resize(values.size() + m_fields.size());
    auto next = values.rbegin();
    for (std::size_t field = m_fields.size(); field > 0; --field) {
        std::vector<Value> const& all = m_fields[field - 1].values();
        *next++ = all[number % all.size()];
        number /= all.size();
    }
}

Value joined(ValueStore& store, std::span<Value const> components) {
    if (components.size() == 1) {
        return components[0];
    }
    return components[0].is(Value::Kind::name) ? store.dotted(components[0], components.subspan(1))
                                               : Value();
}

std::size_t first_extent(ValueStore const& store, std::span<Value const> components) {
    std::size_t extent = 0;
    for (std::size_t wanted = 1; wanted > 0 && extent < components.size(); ++extent) {
        Value const component = components[extent];
        wanted += component.is(Value::Kind::name) ? store.fields_of(component).size() : 0;
        --wanted;
    }
    return extent;
}

} // namespace Calder::Values
