#include "values/channel_table.h"

#include "values/text.h"
#include "values/value_error.h"

#include <climits>

#include <algorithm>
#include <array>

namespace Calder::Values {

namespace {

/// With names and their fields side by side.
void append_flattened(ValueStore const& store, std::span<Value const> values,
                      std::vector<Value>& components) {
    for (Value const value : values) {
        if (value.is(Value::Kind::dotted)) {
            components.push_back(store.head(value));
            std::span<Value const> const further = store.elements(value);
            components.insert(components.end(), further.begin(), further.end());
        } else {
            components.push_back(value);
        }
    }
}

/// The components of `beginning` and then those of `more`; on the stack if they are few.
class Components {
  public:
    Components(ValueStore const& store, std::span<Value const> beginning,
               std::span<Value const> more) {
        std::size_t const size = beginning.size() + more.size();
        bool const is_flat =
            std::ranges::none_of(more, [](Value value) { return value.is(Value::Kind::dotted); });
        if (is_flat && size <= m_few.size()) {
            std::ranges::copy(more, std::ranges::copy(beginning, m_few.begin()).out);
            m_all = std::span(m_few).first(size);
            return;
        }
        m_many.assign(beginning.begin(), beginning.end());
        append_flattened(store, more, m_many);
        m_all = m_many;
    }

    std::span<Value const> all() const { return m_all; }

  private:
    std::array<Value, 8> m_few;
    std::vector<Value> m_many;
    std::span<Value const> m_all;
};

std::string in_quotes(std::string const& text) {
    return '\'' + text + '\'';
}

} // namespace

unsigned ChannelTable::declare(std::string const& name, std::shared_ptr<FieldList const> fields,
                               unsigned first_number) {
    if (fields->count() > UINT_MAX - first_number) {
        throw ValueError("the channel " + in_quotes(name) + " has too many events");
    }
    auto const [place, is_new] =
        m_channels.emplace(name, static_cast<unsigned>(m_declarations_of.size()));
    unsigned const channel = place->second;
    if (is_new) {
        m_declarations_of.emplace_back();
        m_store.channel(channel, name);
    }
    m_declarations_of[channel].push_back(static_cast<unsigned>(m_declarations.size()));
    auto const count = static_cast<unsigned>(fields->count());
    m_declarations.push_back({channel, first_number, std::move(fields)});
    m_asked = CallTable();
    m_answers.clear();
    return count;
}

unsigned ChannelTable::declare(std::string const& name,
                               std::vector<std::vector<Value>> const& fields,
                               unsigned first_number) {
    return declare(name, std::make_shared<FieldList const>(m_store, fields), first_number);
}

Value ChannelTable::find(std::string_view name) const {
    auto const place = m_channels.find(name);
    if (place != m_channels.end()) {
        return completed(place->second, {});
    }
    return name == "tick" ? Value::event(tick_number) : Value();
}

Value ChannelTable::with_fields(Value base, std::span<Value const> more) const {
    if (base.is(Value::Kind::name) || base.is(Value::Kind::dotted)) {
        return name_with_fields(base, Components(m_store, m_store.elements(base), more).all());
    }
    if (!base.is(Value::Kind::channel) && !base.is(Value::Kind::event)) {
        throw ValueError("only a channel, an event or a name takes fields, and " +
                         short_text_of(*this, base) + " is " +
                         std::string(Values::name_of(base.kind())));
    }
    if (more.empty()) {
        return base;
    }
    std::vector<Value> room;
    Beginning const beginning = taken_apart(base, room);
    return completed(beginning.channel, Components(m_store, beginning.components, more).all());
}

std::size_t ChannelTable::room_behind(Value beginning) const {
    bool const is_declared =
        beginning.is(Value::Kind::channel) ||
        (beginning.is(Value::Kind::event) && declaration_of(beginning.as_event()) != nullptr);
    if (!is_declared) {
        return SIZE_MAX;
    }
    std::vector<Value> room;
    auto const [channel, components] = taken_apart(beginning, room);
    std::size_t most = components.size();
    for (unsigned const number : m_declarations_of[channel]) {
        FieldList const& fields = *m_declarations[number].fields;
        std::size_t all = 0;
        for (std::size_t field = 0; field < fields.size(); ++field) {
            all += fields[field].lengths().back();
        }
        most = std::max(most, all);
    }
    return most - components.size();
}

std::string ChannelTable::event_name(unsigned number) const {
    std::optional<Parts> const parts = parts_of(number);
    if (!parts) {
        return number == tick_number ? "tick" : number == tau_number ? "tau" : "?";
    }
    return text_of(*this, name_of(parts->channel), parts->fields);
}

std::optional<ChannelTable::Parts> ChannelTable::parts_of(unsigned event) const {
    Declaration const* const declaration = declaration_of(event);
    if (declaration == nullptr) {
        return std::nullopt;
    }
    Parts parts{declaration->channel, {}};
    declaration->fields->append_values(event - declaration->first_number, parts.fields);
    return parts;
}

ChannelTable::Declaration const* ChannelTable::declaration_of(unsigned event) const {
    auto const behind =
        std::ranges::upper_bound(m_declarations, event, {}, &Declaration::first_number);
    if (behind == m_declarations.begin()) {
        return nullptr;
    }
    Declaration const& last = *(behind - 1);
    return event - last.first_number < last.fields->count() ? &last : nullptr;
}

ChannelTable::Beginning ChannelTable::taken_apart(Value beginning, std::vector<Value>& room) const {
    if (beginning.is(Value::Kind::channel)) {
        return {beginning.node().number, m_store.elements(beginning)};
    }
    if (!beginning.is(Value::Kind::event)) {
        throw ValueError(short_text_of(*this, beginning) + " is " +
                         std::string(Values::name_of(beginning.kind())) +
                         " where a channel or an event is wanted");
    }
    std::optional<Parts> const parts = parts_of(beginning.as_event());
    if (!parts) {
        throw ValueError(in_quotes(event_name(beginning.as_event())) + " takes no fields");
    }
    append_flattened(m_store, parts->fields, room);
    return {parts->channel, room};
}

/// The event with these components, or what wants further ones.
Value ChannelTable::completed(unsigned channel, std::span<Value const> components) const {
    bool is_beginning = false;
    unsigned farthest = 0;
    FieldList::Filling best;
    best.fits = false;
    for (unsigned const number : m_declarations_of[channel]) {
        Declaration const& declaration = m_declarations[number];
        FieldList::Filling const filling = declaration.fields->fill(m_store, components);
        if (filling.fits && filling.fields == declaration.fields->size()) {
            return Value::event(declaration.first_number + static_cast<unsigned>(filling.number));
        }
        is_beginning |= filling.fits;
        if (filling.components >= best.components) {
            best = filling;
            farthest = number;
        }
    }
    if (is_beginning) {
        return m_store.dotted(m_store.channel_value(channel), components);
    }
    std::string const& name = name_of(channel);
    std::string const text = short_text_of(*this, name, components);
    throw ValueError("the event " + in_quotes(text) + " is not declared: " +
                     misfit(name, *m_declarations[farthest].fields, components, best));
}

Value ChannelTable::name_with_fields(Value name, std::span<Value const> components) const {
    FieldList const& fields = m_store.fields_of(name);
    Value const head = m_store.head(name);
    FieldList::Filling const filling = fields.fill(m_store, components);
    if (filling.fits) {
        return m_store.dotted(head, components);
    }
    std::string const& text = m_store.text_of_name(head);
    throw ValueError(in_quotes(short_text_of(*this, text, components)) +
                     " is no value: " + misfit(text, fields, components, filling));
}

/// Why components that do not fit the fields do not.
std::string ChannelTable::misfit(std::string const& name, FieldList const& fields,
                                 std::span<Value const> components,
                                 FieldList::Filling const& filling) const {
    if (filling.fields == fields.size()) {
        std::string const takes = in_quotes(name) + " takes ";
        return fields.size() == 0   ? takes + "no fields"
               : fields.size() == 1 ? takes + "one field"
                                    : takes + std::to_string(fields.size()) + " fields";
    }
    std::span<Value const> const rest = components.subspan(filling.components);
    Value const wrong = joined(m_store, rest.first(first_extent(m_store, rest)));
    return short_text_of(*this, wrong) + " is no value of field " +
           std::to_string(filling.fields + 1) + " of " + in_quotes(name);
}

} // namespace Calder::Values
