#include "script/hints.h"

#include <algorithm>
#include <array>

namespace Calder::Script {

namespace {

using Token = Parser::token;

struct Row {
    std::string_view text;
    char const* meaning;
};

/// The first row that the text goes on with counts.
constexpr std::array characters{
    Row{"!", "outputs as in 'c!e' are not in the notation yet: write each event, as in 'c.0'"},
    Row{"?", "inputs as in 'c?x' are not in the notation yet: write a choice, or '{| c |} -> P'"},
    Row{"&", "conditions are not in the notation yet"},
    Row{"|[", "the parallel composition over a set of events is written 'P [| S |] Q'"},
    Row{"|", "a choice is written 'P [] Q' or 'P |~| Q'"},
    Row{"//", "a comment begins with '--'"},
    Row{"/*", "a comment begins with '--', or stands between '{-' and '-}'"},
    Row{"/", "a renaming is written 'P[[a <- b]]'"},
    Row{"#", "a comment begins with '--'"},
    Row{"+", "arithmetic is not in the notation yet, and a choice is written 'P [] Q'"},
    Row{"-", "arithmetic is not in the notation yet, and a comment begins with '--'"},
    Row{"*/", "a comment begins with '--', or stands between '{-' and '-}'"},
    Row{"*", "arithmetic is not in the notation yet"},
    Row{"<", "comparisons and sequences are not in the notation yet"},
    Row{">", "comparisons and sequences are not in the notation yet"},
    Row{"→", "write '->'"},
    Row{"⟶", "write '->'"},
    Row{"←", "write '<-'"},
    Row{"↔", "write '<->'"},
    Row{"□", "write '[]'"},
    Row{"⊓", "write '|~|'"},
    Row{"▷", "write '[>'"},
    Row{"△", "write '/\\'"},
    Row{"∥", "write '[| S |]' or '[S || T]'"},
    Row{"‖", "write '[| S |]' or '[S || T]'"},
    Row{"⦀", "write '|||'"},
    Row{"⫴", "write '|||'"},
    Row{"∖", "write '\\'"},
    Row{"✓", "write 'tick'"},
    Row{"√", "write 'tick'"},
    Row{"\u00A0", "it looks like a blank and is none (U+00A0)"},
    Row{"\u200B", "it cannot be seen (U+200B)"},
    Row{"\uFEFF", "it cannot be seen (U+FEFF)"},
};

constexpr std::array words{
    Row{"if", "'if' is not in the notation yet"},
    Row{"let", "'let' is not in the notation yet"},
    Row{"datatype", "'datatype' is not in the notation yet: a channel lists its values"},
    Row{"nametype", "'nametype' is not in the notation yet: a channel lists its values"},
    Row{"include", "'include' is not in the notation yet"},
    Row{"assert", "'assert' is not in the notation yet; 'calder explore --deadlock' looks for a "
                  "deadlock"},
    Row{"event", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"events", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"channels", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"Channel", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
};

constexpr std::size_t longest_call = 40; // bytes

constexpr char const* no_sets = "names of sets are not in the notation yet";

/// The tokens around an error. A token of that name may be asked for in front of the first one and
/// behind the last: it is END.
class Reading {
  public:
    Reading(TokenList const& tokens, SyntaxErrorContext const& context)
        : m_tokens(tokens), m_context(context) {}

    std::optional<Hint> hint() const {
        using Try = std::optional<Hint> (Reading::*)() const;
        for (Try const attempt : {&Reading::of_word, &Reading::of_definition, &Reading::of_call,
                                  &Reading::of_replication, &Reading::of_defined_value,
                                  &Reading::of_set, &Reading::of_bracket, &Reading::of_operator}) {
            if (std::optional<Hint> found = (this->*attempt)()) {
                return found;
            }
        }
        return std::nullopt;
    }

  private:
    /// The kind of the token that stands so many behind the error.
    TokenKind kind(int distance) const { return kind_at(at(distance)); }
    unsigned at(int distance) const { return m_context.token + static_cast<unsigned>(distance); }
    TokenKind kind_at(unsigned token) const {
        return token < m_tokens.size() ? m_tokens[token].kind : Token::END;
    }
    std::string_view text(int distance) const { return m_tokens.text_of(at(distance)); }

    Hint here(int distance, std::string message) const {
        return {at(distance), std::move(message)};
    }

    /// A name and what stands in parentheses behind it: `'B(n)'`, or `'B(…)'` where that is long or
    /// cannot be shown in a line.
    std::string call_text(unsigned name, unsigned close) const {
        std::size_t const start = m_tokens[name].offset;
        std::size_t const length = m_tokens[close].offset + m_tokens[close].length - start;
        std::string_view const text = m_tokens.text.substr(start, length);
        bool const can_be_shown =
            kind_at(close) == Token::RIGHT_PARENTHESIS && length <= longest_call &&
            std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
        return in_quotes(can_be_shown ? std::string(text)
                                      : std::string(m_tokens.text_of(name)) + "(…)");
    }

    bool starts_item(TokenKind kind) const {
        return kind == Token::DEFINED_NAME || kind == Token::CHANNEL || kind == Token::END;
    }

    /// The parenthesis that closes this one, within the same definition; itself when none does.
    unsigned closing(unsigned open) const {
        unsigned depth = 0;
        for (unsigned token = open; !starts_item(kind_at(token)); ++token) {
            depth += kind_at(token) == Token::LEFT_PARENTHESIS ? 1 : 0;
            if (kind_at(token) == Token::RIGHT_PARENTHESIS && --depth == 0) {
                return token;
            }
        }
        return open;
    }

    /// The brace that opens the set that ends with this one.
    unsigned opening(unsigned close) const {
        unsigned token = close;
        while (kind_at(token) != Token::LEFT_BRACE && kind_at(token) != Token::CLOSURE_OPEN &&
               !starts_item(kind_at(token))) {
            --token;
        }
        return token;
    }

    bool ends_set(int distance) const {
        return kind(distance) == Token::RIGHT_BRACE || kind(distance) == Token::CLOSURE_CLOSE;
    }

    bool is_in_declaration() const {
        unsigned token = m_context.token;
        while (token > 0 && !starts_item(kind_at(--token))) {
        }
        return kind_at(token) == Token::CHANNEL;
    }

    /// `if b then P else Q`: at the word or right behind it.
    std::optional<Hint> of_word() const {
        for (int const distance : {0, -1}) {
            if (kind(distance) != Token::NAME && kind(distance) != Token::DEFINED_NAME) {
                continue;
            }
            if (std::string const meaning = word_hint(text(distance)); !meaning.empty()) {
                return here(distance, meaning);
            }
        }
        return std::nullopt;
    }

    /// `B(n) = P`, `P := Q`, `P == Q`, `channel a = {0}`
    std::optional<Hint> of_definition() const {
        for (int const distance : {0, -1}) {
            if (kind(distance) != Token::NAME) {
                continue;
            }
            unsigned const name = at(distance);
            if (kind(distance + 1) == Token::LEFT_PARENTHESIS &&
                kind_at(closing(name + 1) + 1) == Token::EQUALS) {
                return Hint{name, "definitions with parameters, as " +
                                      call_text(name, closing(name + 1)) +
                                      ", are not in the notation yet"};
            }
            if (kind(distance + 1) == Token::COLON && kind(distance + 2) == Token::EQUALS) {
                return here(distance + 1, "a definition is written 'P = …'");
            }
        }
        if (kind(0) == Token::EQUALS && kind(-1) == Token::DEFINED_NAME) {
            return here(0, "a definition is written 'P = …'");
        }
        if (kind(0) == Token::EQUALS && kind(-1) == Token::NAME && kind(-2) == Token::CHANNEL) {
            return here(0, "the values of a channel stand behind ':', as in 'channel a : {0..4}'");
        }
        return std::nullopt;
    }

    /// `B(1)`
    std::optional<Hint> of_call() const {
        if (kind(0) != Token::LEFT_PARENTHESIS || kind(-1) != Token::NAME) {
            return std::nullopt;
        }
        return here(-1, "processes with parameters, as " + call_text(at(-1), closing(at(0))) +
                            ", are not in the notation yet");
    }

    /// `||| x : S @ P`, `|| x : S @ [A] P`
    std::optional<Hint> of_replication() const {
        constexpr std::array operators{Token::EXTERNAL_CHOICE, Token::INTERNAL_CHOICE,
                                       Token::INTERLEAVING, Token::PARALLEL, Token::SEMICOLON};
        for (int const distance : {0, -1, -2}) {
            if (std::find(operators.begin(), operators.end(), kind(distance)) != operators.end() &&
                kind(distance + 1) == Token::NAME && kind(distance + 2) == Token::COLON) {
                return here(distance, "operators over the values of a set, as '" +
                                          std::string(text(distance)) +
                                          " x : S @ P', are not in the notation yet");
            }
        }
        return std::nullopt;
    }

    /// `A = {a, b}`, `A = {0..4}`, `N = 5`
    std::optional<Hint> of_defined_value() const {
        constexpr char const* start = "a name stands for a process: ";
        if (kind(0) == Token::NUMBER && kind(-1) == Token::DEFINED_NAME) {
            return here(0, std::string(start) + "names of numbers are not in the notation yet");
        }
        bool const is_range = kind(0) == Token::NUMBER && kind(-1) == Token::LEFT_BRACE;
        bool const is_set = ends_set(-1) && starts_item(kind(0));
        if (is_range || is_set) {
            unsigned const open = opening(at(-1));
            if (kind_at(open - 1) == Token::DEFINED_NAME) {
                return Hint{open, std::string(start) + no_sets};
            }
        }
        return std::nullopt;
    }

    /// `P \ A`, `channel c : T`, `channel c : 0..4`
    std::optional<Hint> of_set() const {
        if (m_context.wants_set && kind(0) == Token::NAME) {
            return here(0, "a set of events stands between braces, as in '{a}' or '{| a |}'; " +
                               std::string(no_sets));
        }
        bool const is_value = kind(0) == Token::NAME || kind(0) == Token::NUMBER;
        if (m_context.wants_field && is_value && is_in_declaration()) {
            return here(0, std::string("the values of a field stand between braces, as in "
                                       "'{0..4}' or '{on, off}'") +
                               (kind(0) == Token::NAME ? "; " + std::string(no_sets) : ""));
        }
        return std::nullopt;
    }

    /// `P [A] Q`, `P [{a}] Q`, `P [A || B] Q`
    std::optional<Hint> of_bracket() const {
        bool const is_name = kind(-1) == Token::NAME && kind(-2) == Token::LEFT_BRACKET;
        bool const is_set = ends_set(-1) && kind_at(opening(at(-1)) - 1) == Token::LEFT_BRACKET;
        if (kind(0) == Token::RIGHT_BRACKET && (is_name || is_set)) {
            return here(0, "the parallel composition over one set of events is written "
                           "'P [| S |] Q', with S between braces, as in '{a}'");
        }
        if (kind(0) == Token::PARALLEL && is_name) {
            return here(-1, "a set of events stands between braces, as in '[{a} || {b}]'; " +
                                std::string(no_sets));
        }
        return std::nullopt;
    }

    /// `P || Q`, `STOP -> P`
    std::optional<Hint> of_operator() const {
        if (m_context.follows_term && kind(0) == Token::PARALLEL) {
            return here(0, "'||' needs to know the events: write 'P [| S |] Q', 'P [S || T] Q' or, "
                           "without common events, 'P ||| Q'");
        }
        if (m_context.follows_term && kind(0) == Token::ARROW) {
            return here(0, "what stands before '->' is an event or a set of events, not a process");
        }
        return std::nullopt;
    }

    TokenList const& m_tokens;
    SyntaxErrorContext const& m_context;
};

} // namespace

std::optional<Hint> syntax_hint(TokenList const& tokens, SyntaxErrorContext const& context) {
    return Reading(tokens, context).hint();
}

std::string word_hint(std::string_view word) {
    auto const row = std::find_if(words.begin(), words.end(),
                                  [&](Row const& candidate) { return candidate.text == word; });
    return row == words.end() ? "" : row->meaning;
}

std::string character_hint(std::string_view text, std::size_t offset) {
    char const before = offset == 0 ? '\n' : text[offset - 1];
    std::string_view rest = text.substr(offset);
    if (before == '=' && rest.starts_with('>')) {
        return ": a prefix is written 'a -> P'";
    }
    if (before == ']' && rest.starts_with('|')) {
        rest = "|[";
    }
    auto const row = std::find_if(characters.begin(), characters.end(), [&](Row const& candidate) {
        return rest.starts_with(candidate.text);
    });
    return row == characters.end() ? "" : std::string(": ") + row->meaning;
}

} // namespace Calder::Script
