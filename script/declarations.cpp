#include "script/declarations.h"

#include "script/event_literals.h"
#include "script/limits.h"
#include "values/text.h"
#include "values/value_error.h"

#include <algorithm>
#include <memory>

namespace Calder::Script {

namespace {

using ProcessCompiler::first_visible_event;
using Values::FieldList;
using Values::Value;

/// The values of the fields of one declaration, and what they are as text.
struct Outline {
    std::vector<std::vector<Value>> fields;
    std::vector<std::vector<std::string>> texts;
    std::uint64_t events = 1;     // of each channel; more than the limit stands for any
    std::uint64_t characters = 0; // of all its events, without the channel's own name
};

class Declarer {
  public:
    Declarer(Telling const& telling, NameTable& names, Translation& translation,
             Values::ChannelTable& channels, Values::Evaluator& evaluator,
             ProcessCompiler::Session& session, Diagnostics& diagnostics)
        : m_telling(telling), m_names(names), m_translation(translation), m_channels(channels),
          m_evaluator(evaluator), m_session(session), m_diagnostics(diagnostics) {}

    void run() {
        m_tokens.resize(m_session.number_bound());
        declare_datatypes();
        for (Translation::Declaration const& declaration : m_translation.declarations) {
            declare_channels(declaration);
        }
    }

  private:
    /// One may be made of others that stand behind it: what cannot be declared yet is tried again as
    /// long as that helps, each time from the other end, so that rows of them take two rounds.
    void declare_datatypes() {
        std::vector<Translation::Datatype const*> waiting;
        for (Translation::Datatype const& datatype : m_translation.datatypes) {
            waiting.push_back(&datatype);
        }
        auto const reported = static_cast<std::ptrdiff_t>(m_diagnostics.size());
        std::size_t before = 0;
        do {
            before = waiting.size();
            m_diagnostics.erase(m_diagnostics.begin() + reported, m_diagnostics.end());
            std::erase_if(waiting,
                          [&](auto const* datatype) { return declare_datatype(*datatype); });
            std::reverse(waiting.begin(), waiting.end());
        } while (waiting.size() < before);
    }

    /// False, and reported, when it cannot be declared.
    bool declare_datatype(Translation::Datatype const& datatype) {
        for (std::size_t index = 0; index < datatype.names.size(); ++index) {
            std::vector<std::vector<Value>> fields;
            for (unsigned const expression : datatype.fields[index]) {
                if (!evaluate(expression, datatype.slot_count, fields.emplace_back())) {
                    return false;
                }
            }
            if (!declare_fields(datatype, index, fields)) {
                return false;
            }
        }
        return true;
    }

    /// False, and reported, when some values cannot be told apart from the beginnings of others.
    bool declare_fields(Translation::Datatype const& datatype, std::size_t index,
                        std::vector<std::vector<Value>> const& fields) {
        try {
            m_channels.store().declare_fields(datatype.names[index], fields);
            return true;
        } catch (Values::ValueError const& error) {
            report(datatype.node, error.message());
            return false;
        }
    }

    void declare_channels(Translation::Declaration const& declaration) {
        Outline outline;
        std::shared_ptr<FieldList const> const fields = fields_of(declaration, outline);
        for (unsigned const channel : declaration.channels) {
            if (!may_declare(channel, fields != nullptr, outline)) {
                m_names.lost.names.insert(text_of(channel));
                continue;
            }
            unsigned const first_number = m_session.number_bound();
            if (!declare_events(channel, outline)) {
                m_names.lost.names.insert(text_of(channel));
                continue;
            }
            m_channels.declare(std::string(text_of(channel)), fields, first_number);
        }
    }

    /// Nothing, and reported, when they are wrong.
    std::shared_ptr<FieldList const> fields_of(Translation::Declaration const& declaration,
                                               Outline& outline) {
        try {
            if (!declaration.is_broken && read_fields(declaration, outline)) {
                return std::make_shared<FieldList const>(m_channels.store(), outline.fields);
            }
        } catch (Values::ValueError const& error) {
            report(declaration.channels.front(), error.message());
        }
        return nullptr;
    }

    /// False, and all reported, when what one of them lists is wrong.
    bool read_fields(Translation::Declaration const& declaration, Outline& outline) {
        bool are_right = true;
        for (Translation::Field const& field : declaration.fields) {
            std::vector<Value>& values = outline.fields.emplace_back();
            if (!check_ranges(field.node) ||
                !evaluate(field.expression, field.slot_count, values)) {
                are_right = false;
            } else if (values.empty()) {
                report(field.node, "a field without values has no events");
                are_right = false;
            } else {
                are_right &= add_texts(field, values, outline);
            }
        }
        return are_right;
    }

    /// A range that is written out backwards was meant otherwise.
    bool check_ranges(unsigned set) {
        SyntaxTree const& tree = m_telling.tree;
        bool are_right = true;
        for (unsigned const child : tree.children_of(set)) {
            if (tree[child].kind != NodeKind::range) {
                continue;
            }
            unsigned const from = tree.child(child, 0);
            unsigned const to = tree.child(child, 1);
            if (tree[from].kind != NodeKind::number || tree[to].kind != NodeKind::number) {
                continue;
            }
            std::string_view const first = text_of(from);
            std::string_view const last = text_of(to);
            if (first.size() > last.size() || (first.size() == last.size() && first > last)) {
                report(child, "the range " + std::string(first) + ".." + std::string(last) +
                                  " is empty: it runs backwards");
                are_right = false;
            }
        }
        return are_right;
    }

    bool add_texts(Translation::Field const& field, std::vector<Value> const& values,
                   Outline& outline) {
        std::vector<std::string>& texts = outline.texts.emplace_back();
        std::uint64_t characters = 0;
        std::vector<std::uint64_t> words;
        for (Value const value : values) {
            texts.push_back(Values::text_of(m_channels, value));
            characters += texts.back().size() + 1;
            words.push_back(value.word());
        }
        std::sort(words.begin(), words.end());
        if (std::adjacent_find(words.begin(), words.end()) != words.end()) {
            report_doubles(field, values);
            return false;
        }
        if (outline.events * values.size() > event_limit) {
            outline.events = event_limit + 1;
            return true;
        }
        outline.characters = outline.characters * values.size() + outline.events * characters;
        outline.events *= values.size();
        return true;
    }

    /// Each element of a list with a value that stood there before; of anything else, as of a
    /// sequence that a name stands for, the whole.
    void report_doubles(Translation::Field const& field, std::vector<Value> const& values) {
        SyntaxTree const& tree = m_telling.tree;
        Values::Program const& program = m_translation.program;
        Values::Expression const& all = program.expressions[field.expression];
        bool const is_list = all.kind == Values::ExpressionKind::operation &&
                             all.operand_count == tree[field.node].child_count;
        std::unordered_set<std::uint64_t> seen;
        std::size_t index = 0;
        unsigned listed = is_list ? tree[field.node].first_child : field.node;
        for (unsigned part = 0; index < values.size(); ++part) {
            std::size_t const end =
                is_list ? index + width_of(program.operands[all.first_operand + part])
                        : values.size();
            std::size_t first = end;
            for (; index < end; ++index) {
                bool const is_new = seen.insert(values[index].word()).second;
                first = is_new ? first : std::min(first, index);
            }
            if (first < end) {
                report(listed, "the value " +
                                   in_quotes(Values::text_of(m_channels, values[first])) +
                                   " stands twice in this field");
            }
            listed = tree[listed].next;
        }
    }

    /// How many values an element of a list has, which has been evaluated before: a range all of its
    /// own.
    std::size_t width_of(unsigned expression) {
        Values::Program const& program = m_translation.program;
        Values::Expression const& element = program.expressions[expression];
        if (element.kind != Values::ExpressionKind::comprehension) {
            return 1;
        }
        unsigned const range = program.comprehensions[element.number].qualifiers[0].expression;
        return m_channels.store().elements(m_evaluator.evaluate(range)).size();
    }

    /// The elements of a set or a sequence; false, and reported, when there are none to be had.
    bool evaluate(unsigned expression, unsigned slots, std::vector<Value>& values) {
        try {
            Value const all = m_evaluator.evaluate(expression, slots);
            if (!all.is(Value::Kind::set) && !all.is(Value::Kind::sequence)) {
                report(m_translation.program.expressions[expression].place,
                       "a field ranges over a set, and " + Values::short_text_of(m_channels, all) +
                           " is " + std::string(Values::name_of(all.kind())));
                return false;
            }
            std::span<Value const> const elements = m_channels.store().elements(all);
            values.assign(elements.begin(), elements.end());
            return true;
        } catch (Values::EvaluationError const& error) {
            m_diagnostics.push_back(diagnostic_of(m_telling, error));
        } catch (Values::Unreadable const&) {
            if (m_diagnostics
                    .empty()) { // channels, too, are unreadable as long as none is declared
                report(m_translation.program.expressions[expression].place,
                       "what a field ranges over cannot depend on channels and events, which are "
                       "declared only then");
            }
        }
        return false;
    }

    /// Reports why not, unless that has been done.
    bool may_declare(unsigned channel, bool is_whole, Outline const& outline) {
        std::string_view const name = text_of(channel);
        if (name == "tick") {
            report(channel, "'tick' is there from the start and is never declared");
            return false;
        }
        if (!is_whole || m_telling.tokens.is_reported(m_telling.tree[channel].token)) {
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

    /// False, and reported, when an event was declared before.
    bool declare_events(unsigned channel, Outline const& outline) {
        std::vector<std::vector<std::string>> const& texts = outline.texts;
        std::vector<std::size_t> places(texts.size(), 0);
        std::size_t moved = 0;
        do {
            std::string name(text_of(channel));
            for (std::size_t index = 0; index < texts.size(); ++index) {
                name += '.';
                name += texts[index][places[index]];
            }
            if (!declare_event(channel, name)) {
                return false;
            }
            for (moved = texts.size(); moved > 0; --moved) {
                if (++places[moved - 1] < texts[moved - 1].size()) {
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
        unsigned const token = m_telling.tree[channel].token;
        if (number != next) {
            report(channel, "the event " + in_quotes(name) + " is already declared in " +
                                line_of(m_telling.tokens, m_tokens[number], token));
            return false;
        }
        m_tokens.push_back(token);
        return true;
    }

    std::string_view text_of(unsigned node) const {
        return m_telling.tokens.text_of(m_telling.tree[node].token);
    }
    void report(unsigned node, std::string message) {
        m_diagnostics.push_back(
            {location_of(m_telling.tokens, m_telling.tree, node), std::move(message)});
    }

    Telling m_telling;
    NameTable& m_names;
    Translation& m_translation;
    Values::ChannelTable& m_channels;
    Values::Evaluator& m_evaluator;
    ProcessCompiler::Session& m_session;
    Diagnostics& m_diagnostics;
    std::vector<unsigned> m_tokens; // of the declarations, by event number
    std::uint64_t m_characters = 0;
};

} // namespace

void declare(TokenList const& tokens, SyntaxTree const& tree, NameTable& names,
             Translation& translation, Values::ChannelTable& channels, Values::Evaluator& evaluator,
             ProcessCompiler::Session& session, Diagnostics& diagnostics) {
    Telling const telling{tokens, tree, translation.program, channels};
    Declarer(telling, names, translation, channels, evaluator, session, diagnostics).run();
    check_event_literals(telling, names, translation, session, diagnostics);
}

} // namespace Calder::Script
