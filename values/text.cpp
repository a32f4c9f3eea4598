#include "values/text.h"

#include "values/channel_table.h"
#include "values/limits.h"
#include "values/value_error.h"

namespace Calder::Values {

namespace {

constexpr std::string_view ellipsis = "…";

/// Stops at the first character that is one too many.
class Writer {
  public:
    Writer(ChannelTable const& channels, std::size_t most) : m_channels(channels), m_most(most) {}

    void write(Value value) {
        switch (value.kind()) {
        case Value::Kind::none:
        case Value::Kind::foreign: write(ellipsis); return;
        case Value::Kind::truth: write(value.as_truth() ? "true" : "false"); return;
        case Value::Kind::integer: write(std::to_string(value.as_integer())); return;
        case Value::Kind::event: write(m_channels.event_name(value.as_event())); return;
        case Value::Kind::name: write(store().text_of_name(value)); return;
        case Value::Kind::dotted:
            write_with(store().text_of_name(value), value.node().elements());
            return;
        case Value::Kind::channel:
            write_with(m_channels.name_of(value.node().number), value.node().elements());
            return;
        case Value::Kind::tuple: write_between("(", value.node().elements(), ")"); return;
        case Value::Kind::sequence: write_between("<", value.node().elements(), ">"); return;
        case Value::Kind::set: write_set(value); return;
        }
    }

    void write_between(std::string_view opening, std::span<Value const> elements,
                       std::string_view closing) {
        write(opening);
        // `{-` opens a comment, and `<-` is an arrow.
        if (!elements.empty() && elements[0].is(Value::Kind::integer) &&
            elements[0].as_integer() < 0 && opening != "(") {
            write(" ");
        }
        for (std::size_t index = 0; index < elements.size() && !is_full(); ++index) {
            write(index == 0 ? "" : ", ");
            write(elements[index]);
        }
        write(closing);
    }

    void write_with(std::string_view name, std::span<Value const> components) {
        write(name);
        for (Value const component : components) {
            if (is_full()) {
                return;
            }
            write(".");
            write(component);
        }
    }

    bool is_full() const { return m_text.size() > m_most; }

    std::string full_text() {
        if (is_full()) {
            throw ValueError("the text of a value has more than " + std::to_string(m_most) +
                             " characters");
        }
        return std::move(m_text);
    }

    std::string short_text() {
        if (is_full()) {
            std::size_t end = m_most;
            while (end > 0 && (static_cast<unsigned char>(m_text[end]) & 0xC0U) == 0x80U) {
                --end; // not within a character
            }
            m_text.resize(end);
            m_text += ellipsis;
        }
        return std::move(m_text);
    }

  private:
    ValueStore const& store() const { return m_channels.store(); }

    void write(std::string_view text) {
        if (!is_full()) {
            m_text += text;
        }
    }

    void write_set(Value set) {
        if (!is_event_set(set)) {
            write_between("{", set.node().elements(), "}");
            return;
        }
        std::string_view before = "{";
        for (unsigned const event : events_of(set)) {
            if (is_full()) {
                return;
            }
            write(before);
            write(Value::event(event));
            before = ", ";
        }
        write(size_of(set) == 0 ? "{}" : "}");
    }

    ChannelTable const& m_channels;
    std::size_t m_most;
    std::string m_text;
};

} // namespace

std::string text_of(ChannelTable const& channels, Value value) {
    Writer writer(channels, longest_text);
    writer.write(value);
    return writer.full_text();
}

std::string text_of(ChannelTable const& channels, std::string_view name,
                    std::span<Value const> components) {
    Writer writer(channels, longest_text);
    writer.write_with(name, components);
    return writer.full_text();
}

std::string short_text_of(ChannelTable const& channels, Value value, std::size_t characters) {
    Writer writer(channels, characters);
    writer.write(value);
    return writer.short_text();
}

std::string short_text_of(ChannelTable const& channels, std::string_view name,
                          std::span<Value const> components) {
    Writer writer(channels, longest_quotation);
    writer.write_with(name, components);
    return writer.short_text();
}

std::string short_text_of(ChannelTable const& channels, Value value) {
    return short_text_of(channels, value, longest_quotation);
}

std::string short_text_of(ChannelTable const& channels, std::span<Value const> arguments) {
    std::string text;
    for (Value const argument : arguments) {
        text += text.empty() ? "(" : ", ";
        text += short_text_of(channels, argument);
    }
    return text.empty() ? text : text + ')';
}

std::string_view name_of(Value::Kind kind) {
    switch (kind) {
    case Value::Kind::none:
    case Value::Kind::foreign: return "no value";
    case Value::Kind::truth: return "a truth value";
    case Value::Kind::integer: return "an integer";
    case Value::Kind::name: return "a name";
    case Value::Kind::dotted: return "a name with fields";
    case Value::Kind::event: return "an event";
    case Value::Kind::channel: return "a channel";
    case Value::Kind::tuple: return "a tuple";
    case Value::Kind::sequence: return "a sequence";
    case Value::Kind::set: return "a set";
    }
    return {};
}

} // namespace Calder::Values
