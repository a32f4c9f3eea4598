#include "script/hints.h"

#include "script/error_surroundings.h"
#include "script/question_hints.h"
#include "script/suggestion.h"

#include <algorithm>
#include <array>

namespace Calder::Script {

namespace {

using Token = Parser::token;

struct Row {
    std::string_view text;
    char const* meaning;
};

/// For characters of no token. The first row that the text goes on with counts.
constexpr std::array characters{
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
    Row{"≠", "write '!='"},
    Row{"≤", "write '<='"},
    Row{"≥", "write '>='"},
    Row{"∧", "write 'and'"},
    Row{"∨", "write 'or'"},
    Row{"¬", "write 'not'"},
    Row{"∪", "write 'union(S, T)'"},
    Row{"∩", "write 'inter(S, T)'"},
    Row{"∈", "write 'member(x, S)', or 'x <- S' in a set"},
    Row{"⟨", "write '<'"},
    Row{"⟩", "write '>'"},
    Row{"–", "write '-'"},
    Row{"—", "write '-'"},
    Row{"“", "write '\"'"},
    Row{"”", "write '\"'"},
    Row{"\"", "a text ends in the line that it begins in, and only 'include' has one"},
    Row{"\u00A0", "it looks like a blank and is none (U+00A0)"},
    Row{"\u200B", "it cannot be seen (U+200B)"},
    Row{"\uFEFF", "it cannot be seen (U+FEFF)"},
};

constexpr char const* a_choice = "a choice is written 'P [] Q' or 'P |~| Q'";
constexpr char const* a_definition = "a definition is written 'P = …'";

/// For tokens where the text cannot go on, or the one before. The first row that the text goes on with counts.
constexpr std::array operators{
    Row{"//", "a comment begins with '--'"},
    Row{"/*", "a comment begins with '--', or stands between '{-' and '-}'"},
    Row{"*/", "a comment begins with '--', or stands between '{-' and '-}'"},
    Row{"&&", "'and' joins conditions"},
    Row{"|[", "the parallel composition over a set of events is written 'P [| S |] Q'"},
    Row{":=", a_definition},
    Row{"=>", "a prefix is written 'a -> P'"},
    Row{"<=>", "links are written 'P [a <-> b] Q'"},
    Row{"+ ", a_choice},
};

constexpr std::array words{
    Row{"nametype", "a set is named as in 'T = {0..4}'"},
    Row{"event", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"events", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"channels", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"Channel", "events are declared by 'channel', as in 'channel a, b : {0..4}'"},
    Row{"mod", "the remainder is written 'x % y'"},
    Row{"div", "the quotient is written 'x / y'"},
    Row{"elseif", "write 'else if'"},
    Row{"elif", "write 'else if'"},
    Row{"length", "the length of a sequence is written '#s'"},
};

class Reading : private ErrorSurroundings {
  public:
    using ErrorSurroundings::ErrorSurroundings;

    std::optional<Hint> hint() const {
        using Try = std::optional<Hint> (Reading::*)() const;
        for (Try const attempt :
             {&Reading::of_word, &Reading::of_misspelt_word, &Reading::of_definition,
              &Reading::of_comparison, &Reading::of_let, &Reading::of_text, &Reading::of_comment,
              &Reading::of_field, &Reading::of_bracket, &Reading::of_choice, &Reading::of_renaming,
              &Reading::of_operator}) {
            if (std::optional<Hint> found = (this->*attempt)()) {
                return found;
            }
        }
        return std::nullopt;
    }

  private:
    bool starts_primary(TokenKind kind) const {
        return kind == Token::STOP || kind == Token::SKIP || kind == Token::RUN ||
               kind == Token::CHAOS || kind == Token::NAME || kind == Token::LEFT_PARENTHESIS;
    }

    /// The brace that opens the set that ends with this one.
    unsigned opening(unsigned close) const {
        unsigned token = close;
        while (kind_at(token) != Token::LEFT_BRACE && kind_at(token) != Token::CLOSURE_OPEN &&
               !ends_item(kind_at(token))) {
            --token;
        }
        return token;
    }

    bool ends_set(int distance) const {
        return kind(distance) == Token::RIGHT_BRACE || kind(distance) == Token::CLOSURE_CLOSE;
    }

    bool is_in_declaration() const {
        unsigned token = m_context.token;
        while (token > 0 && !ends_item(kind_at(--token))) {
        }
        return kind_at(token) == Token::CHANNEL;
    }

    /// `events a`: at the word or right behind it.
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

    /// `asert P [T= Q`, `chanel a`: at the beginning of a line
    std::optional<Hint> of_misspelt_word() const {
        bool const begins_line =
            kind(0) == Token::NAME &&
            (m_context.token == 0 || m_tokens[at(-1)].source != m_tokens[at(0)].source ||
             m_tokens[at(-1)].line != m_tokens[at(0)].line);
        if (!begins_line) {
            return std::nullopt;
        }
        unsigned budget = suggestion_budget;
        Suggestion suggestion(text(0), budget);
        for (char const* const word : {"assert", "channel", "datatype", "include"}) {
            suggestion.consider(word);
        }
        Wording const meant = suggestion.wording();
        return meant.suggestion.empty()
                   ? std::nullopt
                   : std::optional(here(0, "unexpected " + in_quotes(text(0)) + meant));
    }

    /// `P == Q`, `P := Q`, `channel a = {0}`
    std::optional<Hint> of_definition() const {
        for (int const distance : {0, -1}) {
            bool const is_assigned = kind(distance) == Token::NAME &&
                                     kind(distance + 1) == Token::COLON &&
                                     kind(distance + 2) == Token::EQUALS;
            if (is_assigned) {
                return here(distance + 1, a_definition);
            }
        }
        if (kind(0) == Token::NAME && kind(1) == Token::EQUAL_TO) {
            return here(1, a_definition);
        }
        if (kind(0) == Token::EQUALS && kind(-1) == Token::EQUALS) {
            return here(0, a_definition);
        }
        if (kind(0) == Token::EQUALS && kind(-1) == Token::NAME && kind(-2) == Token::CHANNEL) {
            return here(0, "the values of a channel stand behind ':', as in 'channel a : {0..4}'");
        }
        if (kind(0) == Token::EQUALS && m_context.follows_term) {
            return here(0, "two values are compared by '=='");
        }
        return std::nullopt;
    }

    /// `if x = 1`, `0 < x < 3`, `x <> 1`, `x /= 1`
    std::optional<Hint> of_comparison() const {
        constexpr std::array comparisons{Token::EQUAL_TO, Token::DIFFERS, Token::LESS,
                                         Token::AT_MOST,  Token::GREATER, Token::AT_LEAST};
        auto const is_in = [](auto const& kinds, TokenKind wanted) {
            return std::find(kinds.begin(), kinds.end(), wanted) != kinds.end();
        };
        if ((kind(0) == Token::GREATER && kind(-1) == Token::LESS) ||
            (kind(0) == Token::EQUALS && kind(-1) == Token::DIVIDE)) {
            return here(-1, "that two values differ is written '!='");
        }
        if (m_context.follows_term && is_in(comparisons, kind(0))) {
            return here(0, "comparisons do not chain: join two of them by 'and'");
        }
        return std::nullopt;
    }

    /// `let x = 1` without `within`
    std::optional<Hint> of_let() const {
        if (kind(0) == Token::DEFINED_NAME && kind(-1) == Token::LET) {
            return here(-1, "this 'let' has no 'within'");
        }
        return std::nullopt;
    }

    /// `//`, `&&`, `a => P`
    std::optional<Hint> of_text() const {
        for (int const distance : {0, -1}) {
            if (at(distance) >= m_tokens.size()) {
                continue; // in front of the first one
            }
            Script::Token const& token = m_tokens[at(distance)];
            std::string_view const rest =
                std::string_view((*m_tokens.sources)[token.source].text).substr(token.offset);
            for (Row const& row : operators) {
                if (rest.starts_with(row.text) &&
                    (distance == 0 || row.text.size() > token.length)) {
                    return here(distance, row.meaning);
                }
            }
        }
        return std::nullopt;
    }

    /// `# …`, `- …`: where an item begins, or a value is complete
    std::optional<Hint> of_comment() const {
        if (kind(0) == Token::HASH || kind(0) == Token::MINUS) {
            return here(0, "a comment begins with '--'");
        }
        return std::nullopt;
    }

    /// `channel c : 0..4`
    std::optional<Hint> of_field() const {
        bool const is_range = kind(0) == Token::RANGE && kind(-1) == Token::NUMBER;
        if (is_range && is_in_declaration()) {
            return here(-1, "the values of a field stand between braces, as in '{0..4}' or "
                            "'{on, off}'");
        }
        return std::nullopt;
    }

    /// `P [A] Q`, `P [{a}] Q`, `P [A || B] Q`
    std::optional<Hint> of_bracket() const {
        bool const is_name = kind(-1) == Token::NAME && kind(-2) == Token::LEFT_BRACKET;
        bool const is_set = ends_set(-1) && kind_at(opening(at(-1)) - 1) == Token::LEFT_BRACKET;
        if (kind(0) == Token::RIGHT_BRACKET && (is_name || is_set)) {
            return here(0, "the parallel composition over one set of events is written "
                           "'P [| S |] Q'");
        }
        return std::nullopt;
    }

    /// `a -> P | b -> Q`, `a -> P + b -> Q`
    std::optional<Hint> of_choice() const {
        if (kind(0) == Token::BAR && m_context.follows_term) {
            return here(0, a_choice);
        }
        if (kind(0) != Token::ARROW) {
            return std::nullopt;
        }
        int distance = -1;
        while (kind(distance) == Token::NAME || kind(distance) == Token::NUMBER ||
               kind(distance) == Token::DOT) {
            --distance;
        }
        bool const is_sum = kind(distance) == Token::PLUS && kind(distance + 1) == Token::NAME;
        bool const is_field = kind(distance - 2) == Token::DOT;
        return is_sum && !is_field ? std::optional(here(distance, a_choice)) : std::nullopt;
    }

    /// `P[[b/a]]`, `P \ S [[a <- b]]`
    std::optional<Hint> of_renaming() const {
        if (kind(0) == Token::RENAMING_OPEN && m_context.follows_term) {
            return here(0,
                        "parentheses are needed: '[[' binds tighter than the operator before it");
        }
        if (kind(0) != Token::DIVIDE) {
            return std::nullopt;
        }
        int distance = -1;
        while (kind(distance) == Token::NAME || kind(distance) == Token::NUMBER ||
               kind(distance) == Token::DOT || kind(distance) == Token::COMMA) {
            --distance;
        }
        return kind(distance) == Token::RENAMING_OPEN
                   ? std::optional(here(0, "a renaming is written 'P[[a <- b]]'"))
                   : std::nullopt;
    }

    /// `P || Q`, `|| x : S @ P`, `STOP -> P`, `c.x+1 -> P`
    std::optional<Hint> of_operator() const {
        constexpr std::array arithmetic{Token::PLUS,   Token::MINUS,  Token::TIMES,
                                        Token::DIVIDE, Token::MODULO, Token::CARET};
        if (m_context.follows_term && kind(0) == Token::ARROW &&
            std::find(arithmetic.begin(), arithmetic.end(), kind(-2)) != arithmetic.end()) {
            return here(0, "before '->' an expression stands in parentheses or behind '!', as in "
                           "'c.(x+1) -> P' and 'c!x+1 -> P'");
        }
        if (m_context.follows_term && kind(0) == Token::PARALLEL) {
            return here(0, "'||' needs to know the events: write 'P [| S |] Q', 'P [S || T] Q' or, "
                           "without common events, 'P ||| Q'");
        }
        if (kind(-1) == Token::AT && starts_primary(kind(0))) {
            return here(0, "each process has its events in front of it: write "
                           "'|| x : S @ [A(x)] P(x)'");
        }
        if (m_context.follows_term && kind(0) == Token::ARROW) {
            return here(0, "what stands before '->' is an event or a set of events, not a process");
        }
        return std::nullopt;
    }
};

} // namespace

std::optional<Hint> syntax_hint(TokenList const& tokens, SyntaxErrorContext const& context) {
    if (std::optional<Hint> found = question_hint(tokens, context)) {
        return found;
    }
    return Reading(tokens, context).hint();
}

std::string word_hint(std::string_view word) {
    auto const row = std::find_if(words.begin(), words.end(),
                                  [&](Row const& candidate) { return candidate.text == word; });
    return row == words.end() ? "" : row->meaning;
}

std::string character_hint(std::string_view text, std::size_t offset) {
    std::string_view const rest = text.substr(offset);
    auto const row = std::find_if(characters.begin(), characters.end(), [&](Row const& candidate) {
        return rest.starts_with(candidate.text);
    });
    return row == characters.end() ? "" : std::string(": ") + row->meaning;
}

std::string comment_hint(std::string_view text, std::size_t offset) {
    std::string_view const behind = text.substr(std::min(offset + 2, text.size()));
    bool const is_digit = !behind.empty() && behind[0] >= '0' && behind[0] <= '9';
    return is_digit ? "; a set that begins with a negative number is written '{ -1, 2}'" : "";
}

} // namespace Calder::Script
