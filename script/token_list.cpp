#include "script/token_list.h"

#include <algorithm>

namespace Calder::Script {

bool TokenList::is_reported(unsigned token) const {
    std::string_view const spelling = text_of(token);
    return spelling == "tau" || (tokens[token].kind == Parser::token::NUMBER &&
                                 spelling.size() > 1 && spelling[0] == '0');
}

Location TokenList::location(unsigned first, unsigned last) const {
    Token const& start = tokens[first];
    Token const& end = tokens[last].line == start.line ? tokens[last] : start;
    return {start.line, start.column, std::max(end.column + end.length - start.column, 1U)};
}

} // namespace Calder::Script
