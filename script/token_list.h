#pragma once

#include "script/diagnostics.h"
#include "script/grammar.h"
#include "script/sources.h"

#include <string>
#include <string_view>
#include <vector>

namespace Calder::Script {

/// The grammar's own list of tokens.
using TokenKind = Parser::token_kind_type;

/// The words that cannot be names.
constexpr bool is_reserved(TokenKind kind) {
    using T = Parser::token;
    return kind == T::CHANNEL || kind == T::DATATYPE || kind == T::INCLUDE || kind == T::ASSERT ||
           kind == T::ASSERT_NOT || kind == T::STOP || kind == T::SKIP || kind == T::RUN ||
           kind == T::CHAOS || kind == T::LET || kind == T::WITHIN || kind == T::IF ||
           kind == T::THEN || kind == T::ELSE || kind == T::AND || kind == T::OR || kind == T::NOT;
}

/// What a definition, a declaration or an assertion begins with.
constexpr bool starts_item(TokenKind kind) {
    using T = Parser::token;
    return kind == T::DEFINED_NAME || kind == T::CHANNEL || kind == T::DATATYPE ||
           kind == T::ASSERT;
}

/// Whether the scanner refuses a token: a number with a leading zero, or `tau`.
bool is_refused(TokenKind kind, std::string_view text);

struct Token {
    TokenKind kind;
    unsigned source; // its number
    unsigned offset; // in bytes
    unsigned length; // in bytes, which for every token but BAD are characters
    unsigned line;
    unsigned column;
};

/// The tokens of a script, those of an included file in its place, which ends in FILE_END. The
/// sources must outlive the list. Everything that is read from it later names its tokens by their
/// index. The last one is END.
struct TokenList {
    Sources const* sources;
    std::vector<Token> tokens;
    /// The end of a text lies in a comment that was never closed, so anything may be missing.
    bool ends_in_comment = false;

    Token const& operator[](unsigned token) const { return tokens[token]; }
    unsigned size() const { return static_cast<unsigned>(tokens.size()); }

    std::string_view text_of(unsigned token) const { return text_of(tokens[token]); }
    std::string_view text_of(Token const& token) const {
        return std::string_view((*sources)[token.source].text).substr(token.offset, token.length);
    }
    /// Whether the scanner has reported this very token, so that nobody else should.
    bool is_reported(unsigned token) const {
        return is_refused(tokens[token].kind, text_of(token));
    }
    Location location(unsigned token) const { return location(token, token); }
    /// From the start of one token to the end of another; where that one ends on a later line, the
    /// first token alone.
    Location location(unsigned first, unsigned last) const;
    bool are_on_one_line(unsigned first, unsigned last) const;
    /// The same token, or the first one that somebody wrote behind it.
    unsigned written(unsigned token) const { return tokens[token].line > 0 ? token : token + 1; }
};

/// "line 3", or "line 3 of table.csp" where the tokens stand in different sources.
std::string line_of(TokenList const& tokens, unsigned token, unsigned seen_from);

/// At `location(first, last)`. Where that is the first token alone, nothing is suggested, because it
/// would be for all of them.
Diagnostic diagnostic_over(TokenList const& tokens, unsigned first, unsigned last, Wording wording);

} // namespace Calder::Script
