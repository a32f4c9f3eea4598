#include "values/channel_table.h"
#include "values/text.h"
#include "values/value_error.h"

#include <algorithm>

namespace Calder::Values {

namespace {

/// Of a value of a field, from the components with which one begins.
bool begins_with(ValueStore const& store, Value value, std::span<Value const> beginning) {
    if (!value.is(Value::Kind::dotted) || store.head(value) != beginning[0]) {
        return false;
    }
    std::span<Value const> const fields = store.elements(value);
    return fields.size() >= beginning.size() &&
           std::ranges::equal(fields.first(beginning.size() - 1), beginning.subspan(1));
}

void insert_range(std::uint64_t first, std::uint64_t count, BitSet& events) {
    for (std::uint64_t step = 0; step < count; ++step) {
        events.insert(static_cast<unsigned>(first + step));
    }
}

} // namespace

/// What one declaration has to say of the field behind some components.
struct ChannelTable::NextField {
    std::vector<Value> values;
    std::size_t fields_behind;
};

void ChannelTable::insert_closure(Value beginning, BitSet& events) const {
    if (beginning == Value::event(tick_number) || beginning == Value::event(tau_number)) {
        events.insert(beginning.as_event());
        return;
    }
    std::vector<Value> room;
    auto const [channel, components] = taken_apart(beginning, room);
    for (unsigned const number : m_declarations_of[channel]) {
        Declaration const& declaration = m_declarations[number];
        FieldList const& fields = *declaration.fields;
        FieldList::Filling const filling = fields.fill(m_store, components);
        if (!filling.fits) {
            continue;
        }
        std::uint64_t const first = declaration.first_number;
        if (filling.components == components.size()) {
            std::uint64_t const count = fields.count_from(filling.fields);
            insert_range(first + filling.number * count, count, events);
            continue;
        }
        std::vector<Value> const& values = fields[filling.fields].values();
        std::uint64_t const count = fields.count_from(filling.fields + 1);
        for (std::size_t place = 0; place < values.size(); ++place) {
            if (begins_with(m_store, values[place], components.subspan(filling.components))) {
                insert_range(first + (filling.number * values.size() + place) * count, count,
                             events);
            }
        }
    }
}

BitSet ChannelTable::events() const {
    BitSet events;
    for (Declaration const& declaration : m_declarations) {
        insert_range(declaration.first_number, declaration.fields->count(), events);
    }
    return events;
}

Value ChannelTable::field_values(Value beginning, unsigned fields_behind) const {
    CallTable::Entry const entry = m_asked.insert(fields_behind, {&beginning, 1});
    m_answers.resize(m_asked.size());
    Value& answer = m_answers[entry.number];
    if (!answer) {
        answer = next_values(beginning, fields_behind);
    }
    return answer;
}

Value ChannelTable::next_values(Value beginning, unsigned fields_behind) const {
    std::vector<Value> room;
    auto const [channel, components] = taken_apart(beginning, room);
    std::vector<NextField> found;
    for (unsigned const number : m_declarations_of[channel]) {
        collect_next(m_declarations[number], components, found);
    }
    if (found.empty()) {
        throw ValueError('\'' + short_text_of(*this, name_of(channel), components) +
                         "' takes no further field");
    }
    auto const has_as_many = [&](NextField const& next) {
        return next.fields_behind == fields_behind;
    };
    bool const wants_as_many = std::ranges::any_of(found, has_as_many);
    std::vector<Value> values;
    for (NextField const& next : found) {
        if (!wants_as_many || has_as_many(next)) {
            values.insert(values.end(), next.values.begin(), next.values.end());
        }
    }
    return m_store.set(values);
}

/// One entry for each number of fields that may follow the next one, if there is one.
void ChannelTable::collect_next(Declaration const& declaration, std::span<Value const> components,
                                std::vector<NextField>& found) const {
    FieldList const& fields = *declaration.fields;
    FieldList::Filling const filling = fields.fill(m_store, components);
    if (!filling.fits || filling.fields == fields.size()) {
        return;
    }
    std::size_t const behind = fields.size() - filling.fields - 1;
    std::vector<Value> const& values = fields[filling.fields].values();
    if (filling.components == components.size()) {
        found.push_back({values, behind});
        return;
    }
    std::span<Value const> const beginning = components.subspan(filling.components);
    for (Value const value : values) {
        if (!begins_with(m_store, value, beginning)) {
            continue;
        }
        std::span<Value const> rest = m_store.elements(value).subspan(beginning.size() - 1);
        std::size_t const extent = first_extent(m_store, rest);
        Value const next = joined(m_store, rest.first(extent));
        std::size_t further = behind;
        for (rest = rest.subspan(extent); !rest.empty(); ++further) {
            rest = rest.subspan(first_extent(m_store, rest));
        }
        auto const place = std::ranges::find(found, further, &NextField::fields_behind);
        (place == found.end() ? found.emplace_back(NextField{{}, further}) : *place)
            .values.push_back(next);
    }
}

} // namespace Calder::Values
