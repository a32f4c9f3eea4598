#pragma once

#include "script/token_list.h"
#include "script/wording.h"

#include <optional>
#include <string>
#include <string_view>

namespace Calder::Script {

/// What to say, and where, to people who write what they know from elsewhere.
struct Hint {
    unsigned token;
    Wording message;
};

/// What the grammar knows at an error.
struct SyntaxErrorContext {
    unsigned token;    // where the text cannot go on
    bool follows_term; // the term in front of it is complete
};

/// Nothing where the text resembles nothing that people try.
std::optional<Hint> syntax_hint(TokenList const& tokens, SyntaxErrorContext const& context);

/// For a word that other notations reserve; otherwise empty.
std::string word_hint(std::string_view word);

/// For a comment that begins at a place of the text and never ends: `"; …"`, or nothing.
std::string comment_hint(std::string_view text, std::size_t offset);

/// For a character that belongs to no token, at a place of the text: `": …"`, or nothing.
std::string character_hint(std::string_view text, std::size_t offset);

} // namespace Calder::Script
