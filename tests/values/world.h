#pragma once

#include "values/channel_table.h"
#include "values/text.h"
#include "values/value_error.h"
#include "values/value_store.h"

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace Calder::Values::Testing {

/// Some names and channels, and a reader of values as they are written:
///
///     datatype Packet = data.{0..1} | ack      datatype Two = pair.Packet.Packet
///     red, green, blue                         (names without fields)
///     channel think
///     channel up : {0..4}.{0..4}
///     channel in : Packet
///     channel both : Two.{7, 9}
///     channel c : {0..1}
///     channel c : {0..1}.{5..6}
///     channel far : {-1, 3}.Bool
class World {
  public:
    World() : channels(store) {
        Value const data = store.name("data");
        store.name("ack");
        Value const pair = store.name("pair");
        for (char const* const colour : {"red", "green", "blue"}) {
            store.name(colour);
        }
        store.declare_fields(data, {read_all("0, 1")});
        std::vector<Value> const packets = read_all("data.0, data.1, ack");
        store.declare_fields(pair, {packets, packets});
        std::vector<Value> pairs;
        for (Value const first : packets) {
            for (Value const second : packets) {
                pairs.push_back(store.dotted(pair, std::vector{first, second}));
            }
        }
        std::vector<Value> const five = read_all("0, 1, 2, 3, 4");
        std::vector<std::vector<Value>> const none;
        declare("think", none);
        declare("up", {five, five});
        declare("in", {packets});
        declare("both", {pairs, read_all("7, 9")});
        declare("c", {read_all("0, 1")});
        declare("c", {read_all("0, 1"), read_all("5, 6")});
        declare("far", {read_all("-1, 3"), read_all("false, true")});
    }

    unsigned declare(std::string const& name, std::vector<std::vector<Value>> const& fields) {
        unsigned const first = next_event;
        next_event += channels.declare(name, fields, first);
        return first;
    }

    Value read(std::string_view text) {
        m_rest = text;
        Value const value = read_value();
        if (!m_rest.empty()) {
            throw ValueError("left over: " + std::string(m_rest));
        }
        return value;
    }

    /// Separated by commas.
    std::vector<Value> read_all(std::string_view text) {
        m_rest = text;
        std::vector<Value> values;
        while (!m_rest.empty()) {
            values.push_back(read_value());
            skip(", ");
        }
        return values;
    }

    std::string text(Value value) const { return text_of(channels, value); }

    ValueStore store;
    ChannelTable channels;
    unsigned next_event = first_declared_number;

  private:
    Value read_value() {
        Value const head = read_part();
        std::vector<Value> fields;
        while (skip(".")) {
            fields.push_back(read_part());
        }
        return fields.empty() ? head : channels.with_fields(head, fields);
    }

    Value read_part() {
        if (skip("(")) {
            return store.tuple(read_until(")"));
        }
        if (skip("<")) {
            return store.sequence(read_until(">"));
        }
        if (skip("{")) {
            return store.set(read_until("}"));
        }
        std::size_t length = 1; // of a sign
        while (length < m_rest.size() &&
               std::isalnum(static_cast<unsigned char>(m_rest[length])) != 0) {
            ++length;
        }
        std::string const word(m_rest.substr(0, length));
        m_rest.remove_prefix(length);
        if (word == "true" || word == "false") {
            return Value::truth(word == "true");
        }
        if (std::isalpha(static_cast<unsigned char>(word[0])) == 0) {
            return store.integer(std::stoll(word));
        }
        Value const channel = channels.find(word);
        return channel ? channel : store.find_name(word);
    }

    std::vector<Value> read_until(std::string_view closing) {
        std::vector<Value> values;
        skip(" ");
        while (!skip(closing)) {
            values.push_back(read_value());
            skip(", ");
        }
        return values;
    }

    bool skip(std::string_view text) {
        bool const is_there = m_rest.starts_with(text);
        m_rest.remove_prefix(is_there ? text.size() : 0);
        return is_there;
    }

    std::string_view m_rest;
};

/// The text of what is computed, or the error.
template <typename Compute> std::string outcome_of(World const& world, Compute const& compute) {
    try {
        return world.text(compute());
    } catch (ValueError const& error) {
        return error.message();
    }
}

} // namespace Calder::Values::Testing
