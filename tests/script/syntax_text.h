#pragma once

#include "script/scanner.h"
#include "script/syntax_builder.h"
#include "tests/script/reading.h"

#include <string>

namespace Calder::Script::Testing {

/// Parts of a syntax tree as text: `(hiding (prefix a.0 P) {a, b})`. Recurses, so it is for small
/// ones.
class SyntaxText {
  public:
    SyntaxText(SyntaxTree const& tree, TokenList const& tokens) : m_tree(tree), m_tokens(tokens) {}

    std::string of(unsigned node) const {
        Node const& shown = m_tree[node];
        switch (shown.kind) {
        case NodeKind::name:
        case NodeKind::channel: return token(node);
        case NodeKind::number: return (shown.first_token == shown.token ? "" : "-") + token(node);
        case NodeKind::call: return token(node) + joined("(", node, ", ", ")");
        case NodeKind::dotted: return joined("", node, ".", "");
        case NodeKind::tuple: return joined("(", node, ", ", ")");
        case NodeKind::sequence: return joined("<", node, ", ", ">");
        case NodeKind::set: return joined("{", node, ", ", "}");
        case NodeKind::closure: return joined("{|", node, ", ", "|}");
        case NodeKind::range: return joined("", node, "..", "");
        case NodeKind::operation:
        case NodeKind::conjunction:
        case NodeKind::disjunction:
        case NodeKind::conditional:
        case NodeKind::let: return joined("(" + token(node) + " ", node, " ", ")");
        case NodeKind::comprehension: return joined("", node, " | ", "");
        case NodeKind::list: return joined("", node, ", ", "");
        case NodeKind::generator:
        case NodeKind::pair: return joined("", node, " " + token(node) + " ", "");
        case NodeKind::construct: {
            std::string const name = entry_of(shown.construct).name;
            return shown.first_child == none ? name : joined("(" + name + " ", node, " ", ")");
        }
        case NodeKind::communication: return joined("", node, "", "");
        case NodeKind::output:
        case NodeKind::input:
        case NodeKind::chosen_input: return joined(token(node), node, ":", "");
        case NodeKind::definition: return joined(token(node) + "(", node, ")=", "");
        case NodeKind::declaration: return joined("", node, " ", "");
        case NodeKind::datatype: return joined(token(node) + " = ", node, " | ", "");
        case NodeKind::absorbed: break;
        }
        return "a node that nobody should reach";
    }

  private:
    std::string token(unsigned node) const {
        return std::string(m_tokens.text_of(m_tree[node].token));
    }

    std::string joined(std::string text, unsigned node, std::string const& separator,
                       char const* close) const {
        for (unsigned const child : m_tree.children_of(node)) {
            bool const is_first = child == m_tree[node].first_child;
            text += (is_first ? "" : separator) + of(child);
        }
        return text + close;
    }

    SyntaxTree const& m_tree;
    TokenList const& m_tokens;
};

/// What the first definition says or, in a script without any, the first declaration or datatype.
/// The errors instead when there are any.
inline std::string syntax_of(std::string const& script) {
    Diagnostics diagnostics;
    Sources sources{{"script", script}};
    TokenList const tokens = scan(sources, {}, diagnostics);
    SyntaxTree const tree = parse(tokens, diagnostics);
    if (!diagnostics.empty()) {
        return lines_of(diagnostics);
    }
    SyntaxText const text(tree, tokens);
    if (!tree.definitions.empty()) {
        return text.of(tree[tree.definitions[0]].last_child);
    }
    return text.of(tree.declarations.empty() ? tree.datatypes.at(0) : tree.declarations[0]);
}

} // namespace Calder::Script::Testing
