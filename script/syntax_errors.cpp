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
    static Kinds const kinds = kinds_of(
        {K::S_SEMICOLON, K::S_SLIDING_CHOICE, K::S_INTERRUPT, K::S_SYNCHRONISING_INTERRUPT_OPEN,
         K::S_EXTERNAL_CHOICE, K::S_SYNCHRONISING_CHOICE_OPEN, K::S_INTERNAL_CHOICE,
         K::S_PARALLEL_OPEN, K::S_LEFT_BRACKET, K::S_INTERLEAVING, K::S_HIDING, K::S_PROJECTION,
         K::S_AND, K::S_OR, K::S_GUARD});
    return kinds;
}

/// What continues a value, and is not told where a process is as likely.
Kinds const& value_operators() {
    using K = Parser::symbol_kind;
    static Kinds const kinds = kinds_of({K::S_PLUS,
                                         K::S_MINUS,
                                         K::S_TIMES,
                                         K::S_DIVIDE,
                                         K::S_MODULO,
                                         K::S_CARET,
                                         K::S_EQUAL_TO,
                                         K::S_DIFFERS,
                                         K::S_LESS,
                                         K::S_AT_MOST,
                                         K::S_GREATER,
                                         K::S_AT_LEAST,
                                         K::S_DOT,
                                         K::S_RENAMING_OPEN,
                                         K::S_OUTPUT,
                                         K::S_INPUT,
                                         K::S_CHOSEN_INPUT,
                                         K::S_ARROW,
                                         K::S_LEFT_PARENTHESIS,
                                         K::S_BAR});
    return kinds;
}

Kinds const& names() {
    static Kinds const kinds = kinds_of({Parser::symbol_kind::S_NAME});
    return kinds;
}

/// What a value, an event or a set of events may begin with.
Kinds value_starts() {
    using K = Parser::symbol_kind;
    return kinds_of({K::S_STOP, K::S_SKIP, K::S_RUN, K::S_CHAOS, K::S_NAME, K::S_NUMBER,
                     K::S_LEFT_PARENTHESIS, K::S_LEFT_BRACE, K::S_CLOSURE_OPEN, K::S_LESS,
                     K::S_PAIRED_PARALLEL});
}

/// Tokens that are told as one thing where all of them are expected.
struct Group {
    char const* name;
    Kinds members;
};

std::vector<Group> const& groups() {
    using K = Parser::symbol_kind;
    static std::vector<Group> const list{
        {"a name", names()},
        {"a number", kinds_of({K::S_NUMBER})},
        {"an operator", operators() | value_operators()},
        {"an operator", operators()},
        {"a question", kinds_of({K::S_REFINES_TRACES, K::S_REFINES_FAILURES,
                                 K::S_REFINES_FAILURES_DIVERGENCES, K::S_QUESTION_OPEN})},
        {"a definition",
         kinds_of({K::S_DEFINED_NAME, K::S_CHANNEL, K::S_DATATYPE, K::S_ASSERT, K::S_YYEOF})},
    };
    return list;
}

/// What the grammar takes for an operand; what stands in front of it tells more.
struct Operands {
    enum class Kind { any, value, event } kind;
    Kinds members;
};

std::array<Operands, 3> const& operands() {
    using K = Parser::symbol_kind;
    static Kinds const values = value_starts() | kinds_of({K::S_MINUS, K::S_HASH});
    static std::array<Operands, 3> const list{
        Operands{Operands::Kind::any,
                 values | kinds_of({K::S_NOT, K::S_IF, K::S_LET, K::S_PARALLEL,
                                    K::S_EXTERNAL_CHOICE, K::S_INTERLEAVING, K::S_INTERNAL_CHOICE,
                                    K::S_SEMICOLON, K::S_LEFT_BRACKET, K::S_PARALLEL_OPEN,
                                    K::S_SYNCHRONISING_CHOICE_OPEN})},
        Operands{Operands::Kind::value, values},
        Operands{Operands::Kind::event, value_starts()},
    };
    return list;
}

using Items = std::vector<std::string>;

/// What an operand is behind a token, by the notation and not by the grammar alone.
Items operand_behind(TokenKind before, Operands::Kind kind) {
    using T = Parser::token;
    switch (before) {
    case T::DOT: return {"a field"};
    case T::HIDING:
    case T::PROJECTION:
    case T::PARALLEL_OPEN:
    case T::PARALLEL:
    case T::SYNCHRONISING_CHOICE_OPEN:
    case T::SYNCHRONISING_INTERRUPT_OPEN: return {"a set of events"};
    case T::COLON: return {"a set"};
    case T::LEFT_BRACKET: return {"an event", "a set of events"};
    case T::CLOSURE_OPEN:
    case T::RENAMING_OPEN:
    case T::RENAMES:
    case T::LINKS: return {"an event"};
    case T::ARROW:
    case T::GUARD:
    case T::AT:
    case T::SEMICOLON:
    case T::SLIDING_CHOICE:
    case T::INTERRUPT:
    case T::SYNCHRONISING_INTERRUPT_CLOSE:
    case T::EXTERNAL_CHOICE:
    case T::SYNCHRONISING_CHOICE_CLOSE:
    case T::INTERNAL_CHOICE:
    case T::PARALLEL_CLOSE:
    case T::EXCEPTION_CLOSE:
    case T::INTERLEAVING:
    case T::ASSERT:
    case T::ASSERT_NOT:
    case T::REFINES_TRACES:
    case T::REFINES_FAILURES:
    case T::REFINES_FAILURES_DIVERGENCES: return {"a process"};
    case T::EQUALS:
    case T::LEFT_PARENTHESIS:
    case T::THEN:
    case T::ELSE:
    case T::WITHIN:
        return kind == Operands::Kind::any ? Items{"a process", "a value"} : Items{"a value"};
    case T::COMMA: return {kind == Operands::Kind::event ? "an event" : "a value"};
    default: return {"a value"}; // behind operators on values, and where a value is an element
    }
}

/// What may always stand there and is hardly ever what is missing: `P(`, `{a}.`
Kinds unlikely(TokenKind before, Kinds const& expected) {
    using K = Parser::symbol_kind;
    using T = Parser::token;
    Kinds kinds = kinds_of({K::S_FILE_END, K::S_ASSERT_NOT});
    if (before == T::NAME) {
        kinds |= kinds_of({K::S_LEFT_PARENTHESIS});
    }
    if (before == T::DOT) {
        kinds |= kinds_of({K::S_MINUS});
    }
    bool const is_set = before == T::RIGHT_BRACE || before == T::CLOSURE_CLOSE;
    if (is_set && !expected.test(K::S_DEFINED_NAME)) {
        kinds |= kinds_of({K::S_DOT});
    }
    return kinds;
}

/// "a, b or c" of the first few things expected behind a token.
std::string list_of_expected(Kinds expected, TokenKind before) {
    Items items;
    expected &= ~unlikely(before, expected);
    for (Operands const& operand : operands()) {
        if ((expected & operand.members) == operand.members) {
            expected &= ~operand.members;
            items = operand_behind(before, operand.kind);
        }
    }
    for (Group const& group : groups()) {
        if ((expected & group.members) == group.members) {
            expected &= ~group.members;
            if (group.members.test(Parser::symbol_kind::S_HIDING)) {
                expected &= ~value_operators();
            }
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
    if (kind == Parser::token::FILE_END) {
        return "end of " + in_quotes((*tokens.sources)[tokens[token].source].name);
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
    bool const term_is_complete = expected.test(symbol_kind::S_HIDING);
    TokenList const& tokens = build.tokens();
    TokenKind const before = place > 0 ? tokens[place - 1].kind : Parser::token::END;
    if (auto const hint = syntax_hint(tokens, {place, term_is_complete})) {
        build.report_syntax_error(place, hint->message, hint->token);
        return;
    }
    build.report_syntax_error(place, "unexpected " + description_of(tokens, place) + ", expected " +
                                         list_of_expected(expected, before));
}

/// The parser's other way to complain, which nothing here makes it use.
void Parser::error(std::string const& message) {
    build.report_syntax_error(build.tokens().size() - 1, message);
}

} // namespace Calder::Script
