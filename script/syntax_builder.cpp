#include "script/syntax_builder.h"

#include <algorithm>
#include <string_view>

namespace Calder::Script {

SyntaxBuilder::SyntaxBuilder(TokenList const& tokens, Diagnostics& diagnostics)
    : m_tokens(tokens), m_diagnostics(diagnostics) {
    m_tree.lost_names.all = tokens.ends_in_comment;
}

TokenKind SyntaxBuilder::next_token(unsigned& token) {
    token = std::min(m_next_token++, m_tokens.size() - 1);
    return m_tokens[token].kind;
}

void SyntaxBuilder::start_definition(unsigned name) {
    m_tree.definitions.push_back({name, m_tree.size(), m_tree.size(), none});
}

void SyntaxBuilder::end_definition(unsigned root) {
    m_tree.definitions.back().end_node = m_tree.size();
    m_tree.definitions.back().root = root;
}

void SyntaxBuilder::add_declaration(unsigned channels, unsigned fields) {
    if (fields != none) {
        m_tree.append_children_of(channels, fields);
    }
    m_tree[channels].kind = NodeKind::declaration;
    m_tree.declarations.push_back(channels);
}

unsigned SyntaxBuilder::leaf(NodeKind kind, unsigned token) {
    return m_tree.add({.kind = kind, .token = token, .last_token = token});
}

unsigned SyntaxBuilder::reaching(unsigned node, unsigned last_token) {
    m_tree[node].last_token = last_token;
    return node;
}

unsigned SyntaxBuilder::empty_list() {
    return m_tree.add({.kind = NodeKind::list});
}

unsigned SyntaxBuilder::list_of(unsigned first) {
    return extended(empty_list(), first);
}

unsigned SyntaxBuilder::extended(unsigned list, unsigned element) {
    m_tree.append(list, element);
    return list;
}

unsigned SyntaxBuilder::finished(unsigned list, NodeKind kind, unsigned token) {
    m_tree[list].kind = kind;
    m_tree[list].token = token;
    return list;
}

unsigned SyntaxBuilder::term(Construct construct, unsigned token,
                             std::initializer_list<unsigned> parts) {
    unsigned const node = m_tree.add(
        {.kind = NodeKind::construct, .construct = construct, .token = token, .last_token = token});
    for (unsigned const part : parts) {
        if (m_tree[part].kind == NodeKind::list) {
            m_tree.append_children_of(node, part);
        } else {
            m_tree.append(node, part);
        }
    }
    return node;
}

unsigned SyntaxBuilder::chain(Construct construct, unsigned token,
                              std::initializer_list<unsigned> parts) {
    unsigned const left = *parts.begin();
    Node const& node = m_tree[left];
    ConstructEntry const& own = entry_of(construct);
    bool const meets = node.kind == NodeKind::construct && !node.is_parenthesised &&
                       entry_of(node.construct).level == own.level;
    if (!meets) {
        return term(construct, token, parts);
    }
    if (node.construct != construct) {
        report(token, std::string("parentheses are needed: ") + entry_of(node.construct).name +
                          " and " + own.name + " bind equally tight");
    } else if (own.association == Association::none) {
        report(token, std::string("parentheses are needed: ") + own.name + " does not associate");
    } else if (own.association == Association::nary) {
        token = node.token;
        m_tree[left].kind = NodeKind::list;
    }
    return term(construct, token, parts);
}

unsigned SyntaxBuilder::replicated_parallel(unsigned token, unsigned arguments,
                                            std::array<unsigned, 4> const& letters) {
    constexpr std::array<std::string_view, 4> fixed{"a", "p", "a", "p"};
    for (std::size_t index = 0; index < letters.size(); ++index) {
        if (m_tokens.text_of(letters[index]) != fixed[index]) {
            report(letters[index],
                   in_quotes(m_tokens.text_of(letters[index])) + " must be " +
                       in_quotes(fixed[index]) +
                       ": the letters of a replicated alphabetised parallel are fixed");
        }
    }
    if (m_tree[arguments].first_child == none) {
        report(token, "a replicated alphabetised parallel needs at least one argument");
    }
    return term(Construct::replicated_parallel, token, {arguments});
}

unsigned SyntaxBuilder::parenthesised(unsigned term) {
    m_tree[term].is_parenthesised = true;
    return term;
}

void SyntaxBuilder::report(unsigned token, std::string message) {
    m_diagnostics.push_back({m_tokens.location(token), std::move(message)});
}

void SyntaxBuilder::report_syntax_error(unsigned token, std::string message, unsigned shown) {
    // What the scanner could not read it has reported already.
    if (m_tokens[token].kind != Parser::token::BAD) {
        report(shown == none ? token : shown, std::move(message));
    }
    lose_names_around(token);
}

bool SyntaxBuilder::starts_item(unsigned token) const {
    return m_tokens[token].kind == Parser::token::DEFINED_NAME ||
           m_tokens[token].kind == Parser::token::CHANNEL;
}

/// A definition with an error still defines its name; but what a broken declaration, or text that
/// is neither, should have named cannot be known.
void SyntaxBuilder::lose_names_around(unsigned token) {
    unsigned start = token;
    while (start > 0 && (start == token || !starts_item(start))) {
        --start;
    }
    if (m_tokens[start].kind == Parser::token::DEFINED_NAME && start != token) {
        return;
    }
    for (unsigned name = start; name < m_tokens.size(); ++name) {
        if (name > start && starts_item(name)) {
            break;
        }
        if (m_tokens[name].kind == Parser::token::NAME) {
            m_tree.lost_names.names.insert(m_tokens.text_of(name));
        }
    }
}

SyntaxTree parse(TokenList const& tokens, Diagnostics& diagnostics) {
    SyntaxBuilder builder(tokens, diagnostics);
    Parser(builder).parse();
    return builder.take_tree();
}

} // namespace Calder::Script
