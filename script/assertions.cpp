#include "script/assertions.h"

#include <string>

namespace Calder::Script {

namespace {

/// The tokens from `first` to, without, `end`, with a blank wherever anything stands between two.
std::string text_between(TokenList const& tokens, unsigned first, unsigned end) {
    std::string text;
    for (unsigned token = first; token < end; ++token) {
        bool const is_apart = token > first && tokens[token - 1].offset + tokens[token - 1].length <
                                                   tokens[token].offset;
        text += is_apart ? " " : "";
        text += tokens.text_of(token);
    }
    return text;
}

/// Behind the last token of what begins at this one.
unsigned end_of_item(TokenList const& tokens, unsigned keyword) {
    unsigned token = keyword + 1;
    while (!starts_item(tokens[token].kind) && tokens[token].kind != Parser::token::FILE_END &&
           tokens[token].kind != Parser::token::END) {
        ++token;
    }
    return token;
}

AssertionHead head_of(TokenList const& tokens, AssertionSyntax const& assertion) {
    unsigned const behind = assertion.keyword + 1;
    unsigned const end = end_of_item(tokens, assertion.keyword);
    AssertionHead head{assertion.question, assertion.negations % 2 == 1,
                       tokens.location(tokens.written(assertion.keyword)),
                       text_between(tokens, behind, end)};
    unsigned const first = behind + assertion.negations + assertion.parentheses;
    std::string left = text_between(tokens, first, assertion.token);
    switch (assertion.question) {
    case Question::trace_refinement:
    case Question::failures_refinement:
    case Question::failures_divergences_refinement:
        head.abstract_name = std::move(left);
        head.concrete_name = text_between(tokens, assertion.token + 1, end - assertion.parentheses);
        break;
    case Question::deadlock_free:
    case Question::divergence_free:
    case Question::deterministic:
    case Question::has_trace:
    case Question::never: head.concrete_name = std::move(left); break;
    }
    return head;
}

} // namespace

std::vector<AssertionHead> heads_of(TokenList const& tokens,
                                    std::vector<AssertionSyntax> const& assertions) {
    std::vector<AssertionHead> heads;
    heads.reserve(assertions.size());
    for (AssertionSyntax const& assertion : assertions) {
        heads.push_back(head_of(tokens, assertion));
    }
    return heads;
}

} // namespace Calder::Script
