#include "script/token_list.h"

#include <algorithm>
#include <utility>

namespace Calder::Script {

bool is_refused(TokenKind kind, std::string_view text) {
    return text == "tau" || (kind == Parser::token::NUMBER && text.size() > 1 && text[0] == '0');
}

Location TokenList::location(unsigned first, unsigned last) const {
    Token const& start = tokens[first];
    Token const& end = are_on_one_line(first, last) ? tokens[last] : start;
    return {start.line, start.column, std::max(end.column + end.length - start.column, 1U),
            start.source};
}

bool TokenList::are_on_one_line(unsigned first, unsigned last) const {
    return tokens[first].line == tokens[last].line && tokens[first].source == tokens[last].source;
}

std::string line_of(TokenList const& tokens, unsigned token, unsigned seen_from) {
    unsigned const source = tokens[token].source;
    std::string const line = "line " + std::to_string(tokens[token].line);
    return source == tokens[seen_from].source ? line
                                              : line + " of " + (*tokens.sources)[source].name;
}

Diagnostic diagnostic_over(TokenList const& tokens, unsigned first, unsigned last,
                           Wording wording) {
    if (!tokens.are_on_one_line(first, last)) {
        wording.suggestion.clear();
    }
    return diagnostic_at(tokens.location(first, last), std::move(wording));
}

} // namespace Calder::Script
