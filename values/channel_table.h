#pragma once

#include "core/bit_set.h"
#include "values/call_table.h"
#include "values/field_list.h"
#include "values/value_store.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Calder::Values {

constexpr unsigned tau_number = 1;
constexpr unsigned tick_number = 2;
constexpr unsigned first_declared_number = 3;

/// The declared channels, and the numbers of their events. A name may be declared several times with
/// different fields. Errors are ValueErrors.
class ChannelTable {
  public:
    /// The store must live as long.
    explicit ChannelTable(ValueStore& store) : m_store(store) {}
    ChannelTable(ChannelTable const&) = delete;
    ChannelTable& operator=(ChannelTable const&) = delete;

    ValueStore& store() const { return m_store; }

    /// Declares the events of a channel from `first_number` on, the last field running fastest, and
    /// returns how many they are: `fields->count()`. Channels declared together share their fields.
    /// `first_number` is larger than that of every event so far.
    unsigned declare(std::string const& name, std::shared_ptr<FieldList const> fields,
                     unsigned first_number);
    /// Each field is a list of distinct values.
    unsigned declare(std::string const& name, std::vector<std::vector<Value>> const& fields,
                     unsigned first_number);

    /// What the name alone stands for: an event where it was declared without fields, otherwise a
    /// channel; `tick` is an event, too. Nothing where it was not declared.
    Value find(std::string_view name) const;

    /// A channel, an event or a name with further fields: an event if that is complete, even where
    /// longer ones begin so. An error if no declaration has such fields; a name may be left wanting
    /// some. Constant in time for fields of integers without gaps; otherwise a lookup for each field.
    Value with_fields(Value base, std::span<Value const> more) const;

    /// How many components at most can follow a channel or a declared event; of anything else, where
    /// that is not known, more than there can be.
    std::size_t room_behind(Value beginning) const;

    /// `up.0.1`, `tick`, `tau`; `?` of a number without an event.
    std::string event_name(unsigned number) const;

    /// An event taken apart.
    struct Parts {
        unsigned channel;
        std::vector<Value> fields; // as they were declared: data.0 is one
    };
    /// Nothing for tau and tick and what was not declared.
    std::optional<Parts> parts_of(unsigned event) const;
    std::string const& name_of(unsigned channel) const { return m_store.text_of_channel(channel); }

    /// All events that begin as the channel or event does.
    void insert_closure(Value beginning, BitSet& events) const;
    /// All declared events.
    BitSet events() const;

    /// The set of what may stand next behind `beginning`, an event or channel, where `fields_behind`
    /// more are to follow: what its next field was declared with; behind the name of a value
    /// (`in.data`), the next field of that one, as far as the channel takes it. Of several
    /// declarations those count that have so many fields; if none has, all.
    Value field_values(Value beginning, unsigned fields_behind) const;

  private:
    struct Declaration {
        unsigned channel;
        unsigned first_number;
        std::shared_ptr<FieldList const> fields;
    };
    /// A channel with components.
    struct Beginning {
        unsigned channel;
        std::span<Value const> components;
    };
    struct NextField;

    Declaration const* declaration_of(unsigned event) const;
    /// Of a channel or a declared event; `room` holds the components of the latter.
    Beginning taken_apart(Value beginning, std::vector<Value>& room) const;
    Value completed(unsigned channel, std::span<Value const> components) const;
    Value name_with_fields(Value name, std::span<Value const> components) const;
    std::string misfit(std::string const& name, FieldList const& fields,
                       std::span<Value const> components, FieldList::Filling const& filling) const;
    void collect_next(Declaration const& declaration, std::span<Value const> components,
                      std::vector<NextField>& found) const;
    Value next_values(Value beginning, unsigned fields_behind) const;

    ValueStore& m_store;
    std::vector<Declaration> m_declarations; // in the order of their events
    std::map<std::string, unsigned, std::less<>> m_channels;
    std::vector<std::vector<unsigned>> m_declarations_of; // by channel
    /// What field_values was asked, and by that number what it answered.
    mutable CallTable m_asked;
    mutable std::vector<Value> m_answers;
};

} // namespace Calder::Values
