#pragma once

#include "script/diagnostics.h"
#include "script/grammar.h"

#include <string_view>
#include <vector>

namespace Calder::Script {

/// The grammar's own list of tokens.
using TokenKind = Parser::token_kind_type;

/// The words that cannot be names.
constexpr bool is_reserved(TokenKind kind) {
    return kind == Parser::token::CHANNEL || kind == Parser::token::STOP ||
           kind == Parser::token::SKIP || kind == Parser::token::RUN ||
           kind == Parser::token::CHAOS;
}

struct Token {
    TokenKind kind;
    unsigned offset; // in bytes
    unsigned length; // in bytes, which for every token but BAD are characters
    unsigned line;
    unsigned column;
};

/// The tokens of one text, which must outlive the list. Everything that is read from it later names
/// its tokens by their index. The last one is END.
struct TokenList {
    std::string_view text;
    std::vector<Token> tokens;
    /// The end of the text lies in a comment that was never closed, so anything may be missing.
    bool ends_in_comment = false;

    Token const& operator[](unsigned token) const { return tokens[token]; }
    unsigned size() const { return static_cast<unsigned>(tokens.size()); }

    std::string_view text_of(unsigned token) const {
        return text.substr(tokens[token].offset, tokens[token].length);
    }
    /// Whether the scanner has reported this very token, so that nobody else should: a number with
    /// a leading zero, or `tau`.
    bool is_reported(unsigned token) const;
    Location location(unsigned token) const { return location(token, token); }
    /// From the start of one token to the end of another; of one that ends on a later line, the
    /// first token alone.
    Location location(unsigned first, unsigned last) const;
};

} // namespace Calder::Script
