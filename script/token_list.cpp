#include "script/token_list.h"

#include <algorithm>

namespace Calder::Script {

bool is_refused(TokenKind kind, std::string_view text) {
    return text == "tau" || (kind == Parser::token::NUMBER && text.size() > 1 && text[0] == '0');
}

Location TokenList::location(unsigned first, unsigned last) const {
    Token const& start = tokens[first];
    bool const is_one_line = tokens[last].line == start.line && tokens[last].source == start.source;
    Token const& end = is_one_line ? tokens[last] : start;
    return {start.line, start.column, std::max(end.column + end.length - start.column, 1U),
            start.source};
}

} // namespace Calder::Script
