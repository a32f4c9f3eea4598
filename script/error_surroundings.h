#pragma once

#include "script/hints.h"

#include <string>
#include <string_view>
#include <utility>

namespace Calder::Script {

/// The tokens around an error, by their distance from it. One may be asked for in front of the first
/// one and behind the last: it is END.
class ErrorSurroundings {
  public:
    ErrorSurroundings(TokenList const& tokens, SyntaxErrorContext const& context)
        : m_tokens(tokens), m_context(context) {}

  protected:
    TokenKind kind(int distance) const { return kind_at(at(distance)); }
    unsigned at(int distance) const { return m_context.token + static_cast<unsigned>(distance); }
    TokenKind kind_at(unsigned token) const {
        return token < m_tokens.size() ? m_tokens[token].kind : Parser::token::END;
    }
    std::string_view text(int distance) const { return m_tokens.text_of(at(distance)); }

    Hint here(int distance, Wording message) const { return {at(distance), std::move(message)}; }

    /// Whether what is in front of a token has an end there.
    static bool ends_item(TokenKind kind) {
        return starts_item(kind) || kind == Parser::token::FILE_END || kind == Parser::token::END;
    }

    TokenList const& m_tokens;
    SyntaxErrorContext const& m_context;
};

} // namespace Calder::Script
