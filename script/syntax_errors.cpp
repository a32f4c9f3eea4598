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
        {"a name", kinds_of({K::S_NAME})},
        {"a number", kinds_of({K::S_NUMBER})},
        {"a set of events", kinds_of({K::S_LEFT_BRACE, K::S_CLOSURE_OPEN})},
        {"an operator", operators()},
        {"a definition", kinds_of({K::S_DEFINED_NAME, K::S_CHANNEL, K::S_YYEOF})},
    };
    return list;
}

/// "a, b or c" of the first few things expected.
std::string list_of_expected(Kinds expected) {
    std::vector<std::string> items;
    for (Group const& group : groups()) {
        if ((expected & group.members) == group.members) {
            expected &= ~group.members;
            items.emplace_back(group.name);
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
    build.report_syntax_error(place, "unexpected " + description_of(build.tokens(), place) +
                                         ", expected " + list_of_expected(expected));
}

/// The parser's other way to complain, which nothing here makes it use.
void Parser::error(std::string const& message) {
    build.report_syntax_error(build.tokens().size() - 1, message);
}

} // namespace Calder::Script
