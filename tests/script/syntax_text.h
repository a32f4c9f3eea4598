#pragma once

#include "script/scanner.h"
#include "script/syntax_builder.h"
#include "tests/script/reading.h"

#include <string>

namespace Calder::Script::Testing {

/// A part of a syntax tree: `(hiding (prefix a.0 P) {a, b})`. Recurses, so it is for small ones.
inline std::string text_of(SyntaxTree const& tree, TokenList const& tokens, unsigned node) {
    auto const list = [&](std::string text, char const* separator, char const* close) {
        for (unsigned const child : tree.children_of(node)) {
            bool const is_first = child == tree[node].first_child;
            text += (is_first ? "" : separator) + text_of(tree, tokens, child);
        }
        return text + close;
    };
    switch (tree[node].kind) {
    case NodeKind::name:
    case NodeKind::channel: return std::string(tokens.text_of(tree[node].token));
    case NodeKind::event:
    case NodeKind::value: {
        std::string text;
        for (unsigned token = tree[node].token; token <= tree[node].last_token; ++token) {
            text += tokens.text_of(token);
        }
        return text;
    }
    case NodeKind::listed_set:
    case NodeKind::field: return list("{", ", ", "}");
    case NodeKind::closure_set: return list("{|", ", ", "|}");
    case NodeKind::construct: {
        std::string const name = entry_of(tree[node].construct).name;
        return tree[node].first_child == none ? name : list("(" + name + " ", " ", ")");
    }
    case NodeKind::declaration: return list("", " ", "");
    case NodeKind::absorbed:
    case NodeKind::list: break;
    }
    return "a node that nobody should reach";
}

/// The syntax of the first definition or, in a script without any, of the first declaration. The
/// errors instead when there are any.
inline std::string syntax_of(std::string const& script) {
    Diagnostics diagnostics;
    TokenList const tokens = scan(script, diagnostics);
    SyntaxTree const tree = parse(tokens, diagnostics);
    if (!diagnostics.empty()) {
        return lines_of(diagnostics);
    }
    return text_of(tree, tokens,
                   tree.definitions.empty() ? tree.declarations.at(0) : tree.definitions[0].root);
}

} // namespace Calder::Script::Testing
