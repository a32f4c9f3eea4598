#include "script/hints.h"
#include "script/syntax_builder.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <initializer_list>
#include <string>
#include <vector>

namespace Calder::Script {

namespace {

using Kind = Parser::symbol_kind_type;
using Kinds = std::bitset<Parser::symbol_kind::YYNTOKENS>;

constexpr std::size_t longest_list = 4;

Kinds kinds_of(std::initializer_list<Kind> list) {
    Kinds kinds;
    for (Kind const kind : list) {
        kinds.set(static_cast<std::size_t>(kind));
    }
    return kinds;
}

/// What continues a term that could end here.
Kinds const& operators() {
    using K = Parser::symbol_kind;
    static Kinds const kinds =
        kinds_of({K::S_RENAMING_OPEN, K::S_SEMICOLON, K::S_SLIDING_CHOICE, K::S_INTERRUPT,
                  K::S_SYNCHRONISING_INTERRUPT_OPEN, K::S_EXTERNAL_CHOICE,
                  K::S_SYNCHRONISING_CHOICE_OPEN, K::S_INTERNAL_CHOICE, K::S_PARALLEL_OPEN,
                  K::S_LEFT_BRACKET, K::S_INTERLEAVING, K::S_HIDING, K::S_PROJECTION});
    return kinds;
}

Kinds const& sets() {
    using K = Parser::symbol_kind;
    static Kinds const kinds = kinds_of({K::S_LEFT_BRACE, K::S_CLOSURE_OPEN});
    return kinds;
}

Kinds const& names() {
    static Kinds const kinds = kinds_of({Parser::symbol_kind::S_NAME});
    return kinds;
}

/// Tokens that are told as one thing where all of them are expected.
struct Group {
    char const* name;
    Kinds members;
};

std::vector<Group> const& groups() {
    using K = Parser::symbol_kind;
    static std::vector<Group> const list{
        {"a process",
         kinds_of({K::S_STOP, K::S_SKIP, K::S_RUN, K::S_CHAOS, K::S_NAME, K::S_LEFT_PARENTHESIS,
                   K::S_PARALLEL, K::S_LEFT_BRACE, K::S_CLOSURE_OPEN})},
        {"a name or a number", kinds_of({K::S_NAME, K::S_NUMBER})},
        {"a name", names()},
        {"a number", kinds_of({K::S_NUMBER})},
        {"a set of events", sets()},
        {"an operator", operators()},
        {"a definition", kinds_of({K::S_DEFINED_NAME, K::S_CHANNEL, K::S_YYEOF})},
    };
    return list;
}

template <std::size_t count>
bool is_one_of(TokenKind kind, std::array<TokenKind, count> const& kinds) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

/// Whether a name that is wanted at a token is that of an event, and not of a channel or of a
/// letter of the replicated form. In front of a term both may be.
bool wants_event(TokenList const& tokens, unsigned token) {
    using T = Parser::token;
    constexpr std::array<TokenKind, 6> of_lists{T::COMMA,  T::DOT,     T::NAME,
                                                T::NUMBER, T::RENAMES, T::LINKS};
    constexpr std::array<TokenKind, 4> opens_events{T::LEFT_BRACE, T::CLOSURE_OPEN,
                                                    T::RENAMING_OPEN, T::LEFT_BRACKET};
    constexpr std::array<TokenKind, 3> joins_events{T::COMMA, T::RENAMES, T::LINKS};
    if (token == 0) {
        return false;
    }
    unsigned start = token - 1;
    if (is_one_of(tokens[start].kind, joins_events)) {
        while (start > 0 && is_one_of(tokens[start].kind, of_lists)) {
            --start;
        }
    }
    bool const is_letter = start > 0 && tokens[start - 1].kind == T::AT;
    return !is_letter && is_one_of(tokens[start].kind, opens_events);
}

/// "a, b or c" of the first few things expected.
std::string list_of_expected(Kinds expected, bool name_is_event) {
    std::vector<std::string> items;
    for (Group const& group : groups()) {
        if ((expected & group.members) == group.members) {
            expected &= ~group.members;
            items.emplace_back(name_is_event && group.members == names() ? "an event" : group.name);
        }
    }
    for (std::size_t kind = 0; kind < expected.size(); ++kind) {
        if (expected.test(kind)) {
            items.push_back(in_quotes(Parser::symbol_name(static_cast<Kind>(kind))));
        }
    }
    items.resize(std::min(items.size(), longest_list));
    std::string text;
    for (std::size_t index = 0; index < items.size(); ++index) {
        text += index == 0 ? "" : index + 1 < items.size() ? ", " : " or ";
        text += items[index];
    }
    return text;
}

std::string description_of(TokenList const& tokens, unsigned token) {
    TokenKind const kind = tokens[token].kind;
    if (kind == Parser::token::END) {
        return "end of the script";
    }
    if (kind == Parser::token::DEFINED_NAME) {
        return "definition of " + in_quotes(tokens.text_of(token));
    }
    return (is_reserved(kind) ? "reserved word " : "") + in_quotes(tokens.text_of(token));
}

} // namespace

/// Called by the generated parser for every error outside a recovery.
void Parser::report_syntax_error(context const& where) const {
    std::array<Kind, symbol_kind::YYNTOKENS> found{};
    int const count = where.expected_tokens(found.data(), static_cast<int>(found.size()));
    Kinds expected;
    for (int index = 0; index < count; ++index) {
        expected.set(static_cast<std::size_t>(found[static_cast<std::size_t>(index)]));
    }
    unsigned const place = where.lookahead().value;
    // Only hiding and projection, which bind loosest, are followed by less than every operator.
    bool const term_is_complete = expected.test(symbol_kind::S_HIDING);
    if (term_is_complete && operators().test(static_cast<std::size_t>(where.token()))) {
        build.report_syntax_error(
            place, "parentheses are needed: " + in_quotes(build.tokens().text_of(place)) +
                       " binds tighter than the operator before it");
        return;
    }
    TokenList const& tokens = build.tokens();
    bool const wants_field = expected == kinds_of({symbol_kind::S_LEFT_BRACE});
    if (auto const hint =
            syntax_hint(tokens, {place, term_is_complete, expected == sets(), wants_field})) {
        build.report_syntax_error(place, hint->message, hint->token);
        return;
    }
    build.report_syntax_error(place, "unexpected " + description_of(tokens, place) + ", expected " +
                                         list_of_expected(expected, wants_event(tokens, place)));
}

/// The parser's other way to complain, which nothing here makes it use.
void Parser::error(std::string const& message) {
    build.report_syntax_error(build.tokens().size() - 1, message);
}

} // namespace Calder::Script
