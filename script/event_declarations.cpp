#include "script/event_declarations.h"

#include "script/limits.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace Calder::Script {

namespace {

using ProcessCompiler::first_visible_event;

/// The numbers from `first` to `last`, or else the one name at a node.
struct Values {
    unsigned node;
    bool is_range;
    unsigned first = 0;
    unsigned last = 0;

    std::uint64_t count() const { return std::uint64_t{last} - first + 1; }
};

/// What a declaration says, checked but not multiplied out.
struct Outline {
    std::vector<unsigned> channels;          // nodes
    std::vector<std::vector<Values>> fields; // never without values
    std::uint64_t events = 1;                // of each channel; more than the limit stands for any
    std::uint64_t characters = 0;            // of all its events, without the channel's own name
    bool is_faulty = false;
};

class Declarer {
  public:
    Declarer(TokenList const& tokens, SyntaxTree const& tree, ProcessCompiler::Session& session,
             Diagnostics& diagnostics)
        : m_tokens(tokens), m_tree(tree), m_session(session), m_diagnostics(diagnostics) {
        m_table.lost_names = tree.lost_names;
    }

    ChannelTable run() {
        m_lines.resize(m_session.number_bound());
        for (unsigned const declaration : m_tree.declarations) {
            declare(declaration);
        }
        return std::move(m_table);
    }

  private:
    void declare(unsigned declaration) {
        Outline const outline = outline_of(declaration);
        Fields const* fields = nullptr;
        for (unsigned const channel : outline.channels) {
            if (!may_declare(outline, channel)) {
                lose(channel);
                continue;
            }
            if (fields == nullptr) {
                fields = add_fields(outline);
            }
            if (fields == nullptr || !declare_channel(channel, *fields)) {
                lose(channel);
            }
        }
    }

    Outline outline_of(unsigned declaration) {
        Outline outline;
        for (unsigned const part : m_tree.children_of(declaration)) {
            if (m_tree[part].kind == NodeKind::channel) {
                outline.channels.push_back(part);
            } else {
                add_field(outline, part);
            }
        }
        return outline;
    }

    void add_field(Outline& outline, unsigned field) {
        std::vector<Values>& values = outline.fields.emplace_back();
        std::uint64_t count = 0;
        std::uint64_t characters = 0;
        for (unsigned const value : m_tree.children_of(field)) {
            Values const given = values_at(value, outline.is_faulty);
            values.push_back(given);
            count += given.count();
            // The last number of a range is its longest one.
            characters += given.count() * (m_tokens[m_tree[value].last_token].length + 1);
        }
        if (values.empty()) {
            report(field, "a field without values has no events");
            outline.is_faulty = true;
        }
        if (outline.is_faulty || outline.events * count > event_limit) {
            outline.events = event_limit + 1;
            return;
        }
        outline.characters = outline.characters * count + outline.events * characters;
        outline.events *= count;
    }

    Values values_at(unsigned node, bool& is_faulty) {
        Node const& value = m_tree[node];
        bool const is_range = value.token != value.last_token;
        Values values{node, is_range};
        if (m_tokens[value.token].kind == Parser::token::NAME) {
            is_faulty |= m_tokens.is_reported(value.token);
            return values;
        }
        unsigned const first = number_at(value.token, is_faulty);
        unsigned const last = number_at(value.last_token, is_faulty);
        if (is_range && !is_faulty) {
            if (last < first) {
                report(node, "the range " + std::to_string(first) + ".." + std::to_string(last) +
                                 " is empty: it runs backwards");
                is_faulty = true;
                return values;
            }
            values.first = first;
            values.last = last;
        }
        return values;
    }

    unsigned number_at(unsigned token, bool& is_faulty) {
        std::string_view const text = m_tokens.text_of(token);
        unsigned number = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc()) {
            report_token(token, "the number " + in_quotes(text) + " is too large");
            is_faulty = true;
        }
        is_faulty |= m_tokens.is_reported(token);
        return number;
    }

    /// Reports why not, unless that has been done.
    bool may_declare(Outline const& outline, unsigned channel) {
        std::string_view const name = text_of(channel);
        if (name == "tick") {
            report(channel, "'tick' is there from the start and is never declared");
            return false;
        }
        if (outline.is_faulty || m_tokens.is_reported(m_tree[channel].token)) {
            return false;
        }
        if (m_session.number_bound() - first_visible_event + outline.events > event_limit) {
            report(channel, "too many events: with those of " + in_quotes(name) +
                                " there would be more than " + std::to_string(event_limit));
            return false;
        }
        std::uint64_t const characters = outline.characters + outline.events * name.size();
        if (m_characters + characters > event_text_limit) {
            report(channel, "the names of the events are too long: with those of " +
                                in_quotes(name) + " they would have more than " +
                                std::to_string(event_text_limit) + " characters");
            return false;
        }
        m_characters += characters;
        return true;
    }

    /// Writes out the values; null when one stands twice.
    Fields const* add_fields(Outline const& outline) {
        auto fields = std::make_unique<Fields>(outline.fields.size());
        bool is_faulty = false;
        for (std::size_t index = 0; index < outline.fields.size(); ++index) {
            Field& field = (*fields)[index];
            std::uint64_t count = 0;
            for (Values const& values : outline.fields[index]) {
                count += values.count();
            }
            field.values.reserve(count); // so that the texts stay where `places` saw them
            for (Values const& values : outline.fields[index]) {
                is_faulty |= !add_values(field, values);
            }
        }
        return is_faulty ? nullptr : m_table.fields.emplace_back(std::move(fields)).get();
    }

    bool add_values(Field& field, Values const& values) {
        for (std::uint64_t step = 0; step < values.count(); ++step) {
            std::string const& value =
                field.values.emplace_back(values.is_range ? std::to_string(values.first + step)
                                                          : std::string(text_of(values.node)));
            auto const place = static_cast<unsigned>(field.values.size() - 1);
            if (!field.places.try_emplace(value, place).second) {
                report(values.node,
                       "the value " + in_quotes(value) + " stands twice in this field");
                return false;
            }
        }
        return true;
    }

    /// False, and reported, when an event was declared before.
    bool declare_channel(unsigned channel, Fields const& fields) {
        m_table.channels[text_of(channel)].push_back({&fields, m_session.number_bound()});
        std::vector<std::size_t> places(fields.size(), 0);
        std::size_t moved = 0;
        do {
            std::string name(text_of(channel));
            for (std::size_t index = 0; index < fields.size(); ++index) {
                name += '.';
                name += fields[index].values[places[index]];
            }
            if (!declare_event(channel, name)) {
                return false;
            }
            for (moved = fields.size(); moved > 0; --moved) {
                if (++places[moved - 1] < fields[moved - 1].values.size()) {
                    break;
                }
                places[moved - 1] = 0;
            }
        } while (moved > 0);
        return true;
    }

    bool declare_event(unsigned channel, std::string const& name) {
        unsigned const next = m_session.number_bound();
        unsigned const number = m_session.declare_event(name);
        if (number != next) {
            report(channel, "the event " + in_quotes(name) + " is already declared in line " +
                                std::to_string(m_lines[number]));
            return false;
        }
        m_lines.push_back(m_tokens[m_tree[channel].token].line);
        return true;
    }

    void lose(unsigned channel) { m_table.lost_names.names.insert(text_of(channel)); }

    std::string_view text_of(unsigned node) const { return m_tokens.text_of(m_tree[node].token); }
    void report(unsigned node, std::string message) {
        m_diagnostics.push_back(
            {m_tokens.location(m_tree[node].token,
                               std::max(m_tree[node].token, m_tree[node].last_token)),
             std::move(message)});
    }
    void report_token(unsigned token, std::string message) {
        m_diagnostics.push_back({m_tokens.location(token), std::move(message)});
    }

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    ProcessCompiler::Session& m_session;
    Diagnostics& m_diagnostics;
    ChannelTable m_table;
    std::vector<unsigned> m_lines; // of the declarations, by event number
    std::uint64_t m_characters = 0;
};

} // namespace

ChannelTable declare_events(TokenList const& tokens, SyntaxTree const& tree,
                            ProcessCompiler::Session& session, Diagnostics& diagnostics) {
    return Declarer(tokens, tree, session, diagnostics).run();
}

} // namespace Calder::Script
