#include "script/syntax_builder.h"

#include "script/limits.h"
#include "script/questions.h"

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

unsigned SyntaxBuilder::definition(unsigned name, unsigned parameters, unsigned body) {
    unsigned const list = parameters == none ? empty_list() : parameters;
    unsigned const node = leaf(NodeKind::definition, name);
    m_tree.append(node, list);
    m_tree.append(node, body);
    return node;
}

void SyntaxBuilder::end_definition(unsigned definition) {
    m_tree.definitions.push_back(definition);
    end_item();
}

void SyntaxBuilder::lose_definition(unsigned name) {
    end_definition(lost(name));
}

/// A definition of what could not be read.
unsigned SyntaxBuilder::lost(unsigned name) {
    std::vector<unsigned> parts = binds_names(name) ? std::vector<unsigned>() : roots_behind(name);
    unsigned const list = empty_list();
    unsigned const node = leaf(NodeKind::definition, name);
    m_tree.append(node, list);
    m_tree.fragments.emplace(node, std::move(parts));
    return node;
}

/// Whether a definition has parameters, or something in it introduces names.
bool SyntaxBuilder::binds_names(unsigned name) const {
    using T = Parser::token;
    if (m_tokens[name + 1].kind == T::LEFT_PARENTHESIS) {
        return true;
    }
    for (unsigned token = name + 1; token < m_next_token && token < m_tokens.size(); ++token) {
        TokenKind const kind = m_tokens[token].kind;
        if (kind == T::LET || kind == T::INPUT || kind == T::CHOSEN_INPUT || kind == T::AT ||
            kind == T::COLON || kind == T::BAR) {
            return true;
        }
    }
    return false;
}

/// What was read of a definition and is part of nothing else; of a list that is not finished, what
/// is in it.
std::vector<unsigned> SyntaxBuilder::roots_behind(unsigned name) const {
    unsigned const first = m_first_of_item;
    std::vector<bool> is_part(m_tree.size() - first);
    for (unsigned node = first; node < m_tree.size(); ++node) {
        if (m_tree[node].kind != NodeKind::list) {
            for (unsigned const child : m_tree.children_of(node)) {
                is_part[child - first] = true;
            }
        }
    }
    std::vector<unsigned> roots;
    for (unsigned node = first; node < m_tree.size(); ++node) {
        if (!is_part[node - first] && m_tree[node].first_token > name &&
            m_tree[node].depth <= nesting_limit) {
            roots.push_back(node);
        }
    }
    return roots;
}

void SyntaxBuilder::add_declaration(unsigned channels, unsigned fields) {
    m_tree[channels].kind = NodeKind::declaration;
    if (fields != none) {
        m_tree.append(channels, fields);
    }
    m_tree.declarations.push_back(channels);
}

void SyntaxBuilder::add_datatype(unsigned name, unsigned alternatives) {
    m_tree[alternatives].kind = NodeKind::datatype;
    m_tree[alternatives].token = name;
    m_tree.datatypes.push_back(alternatives);
}

unsigned SyntaxBuilder::refinement(Question question, unsigned abstract, unsigned token,
                                   unsigned concrete) {
    m_questions.push_back({.question = question, .token = token, .parts = {abstract, concrete}});
    return static_cast<unsigned>(m_questions.size() - 1);
}

unsigned SyntaxBuilder::question(unsigned process, unsigned open, unsigned last_word,
                                 unsigned argument) {
    AssertionSyntax made{.token = open, .parts = {process}};
    std::string words(m_tokens.text_of(open + 1));
    for (unsigned word = open + 2; word <= last_word; ++word) {
        words += " ";
        words += m_tokens.text_of(word);
    }
    QuestionEntry const* const entry = find_question(words);
    if (entry == nullptr) {
        m_diagnostics.push_back(
            diagnostic_over(m_tokens, open + 1, last_word, unknown_question(words)));
    } else if ((entry->argument == QuestionArgument::nothing) != (argument == none)) {
        m_diagnostics.push_back({m_tokens.location(open, last_word + 1),
                                 argument == none ? missing_argument(*entry)
                                                  : "nothing stands behind this question: write " +
                                                        in_quotes(example_of(*entry))});
    } else {
        made.question = entry->question;
        if (argument != none) {
            made.parts.push_back(argument);
        }
    }
    m_questions.push_back(std::move(made));
    return static_cast<unsigned>(m_questions.size() - 1);
}

unsigned SyntaxBuilder::negated(unsigned question) {
    ++m_questions[question].negations;
    return question;
}

unsigned SyntaxBuilder::parenthesised_question(unsigned question) {
    ++m_questions[question].parentheses;
    return question;
}

void SyntaxBuilder::add_assertion(unsigned keyword, unsigned question) {
    AssertionSyntax& made = m_questions[question];
    made.keyword = keyword;
    for (unsigned& part : made.parts) {
        part = definition(m_tokens.written(keyword), none, part);
    }
    m_tree.assertions.push_back(std::move(made));
    end_item();
}

void SyntaxBuilder::lose_assertion(unsigned keyword) {
    unsigned const part = lost(keyword);
    m_tree[part].token = m_tokens.written(keyword);
    m_tree.assertions.push_back({.keyword = keyword, .parts = {part}});
    end_item();
}

unsigned SyntaxBuilder::leaf(NodeKind kind, unsigned token) {
    return spanning(kind, token, token);
}

unsigned SyntaxBuilder::negative_number(unsigned minus, unsigned number) {
    unsigned const node = spanning(NodeKind::number, minus, number);
    m_tree[node].token = number;
    return node;
}

unsigned SyntaxBuilder::negative(unsigned minus, unsigned operand) {
    Node& node = m_tree[operand];
    bool const is_digits = node.kind == NodeKind::number && node.first_token == node.token;
    if (is_digits && node.parentheses == 0) {
        node.first_token = minus;
        return operand;
    }
    return operation(NodeKind::operation, minus, {operand});
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

unsigned SyntaxBuilder::finished(unsigned list, NodeKind kind, unsigned first_token,
                                 unsigned last_token) {
    Node& node = m_tree[list];
    node.kind = kind;
    node.token = node.first_token = first_token;
    node.last_token = last_token;
    return list;
}

unsigned SyntaxBuilder::spanning(NodeKind kind, unsigned first_token, unsigned last_token) {
    return m_tree.add(
        {.kind = kind, .token = first_token, .first_token = first_token, .last_token = last_token});
}

unsigned SyntaxBuilder::tuple(unsigned open, unsigned first, unsigned others, unsigned close) {
    unsigned const node = spanning(NodeKind::tuple, open, close);
    m_tree.append(node, first);
    m_tree.append_children_of(node, others);
    return node;
}

unsigned SyntaxBuilder::dotted(unsigned left, unsigned dot, unsigned field) {
    Node& node = m_tree[left];
    if (node.kind == NodeKind::dotted && node.parentheses == 0) {
        node.last_token = m_tree[field].last_token + m_tree[field].parentheses;
        m_tree.append(left, field);
        return left;
    }
    unsigned const made = operation(NodeKind::dotted, dot, {left, field});
    m_tree[made].token = m_tree[made].first_token;
    return made;
}

unsigned SyntaxBuilder::operation(NodeKind kind, unsigned token,
                                  std::initializer_list<unsigned> parts) {
    unsigned first = token;
    unsigned last = token;
    for (unsigned const part : parts) {
        if (m_tree[part].kind != NodeKind::list) {
            first = std::min(first, m_tree[part].first_token - m_tree[part].parentheses);
            last = std::max(last, m_tree[part].last_token + m_tree[part].parentheses);
        }
    }
    unsigned const node = spanning(kind, first, last);
    m_tree[node].token = token;
    append_parts(node, parts);
    return node;
}

unsigned SyntaxBuilder::qualified(unsigned token, unsigned results, unsigned qualifiers) {
    unsigned const node = leaf(NodeKind::comprehension, token);
    m_tree.append(node, results);
    m_tree.append_children_of(node, qualifiers);
    return node;
}

unsigned SyntaxBuilder::comprehension(NodeKind kind, unsigned open, unsigned results,
                                      unsigned qualifiers, unsigned close) {
    unsigned const inner = qualified(open, results, qualifiers);
    unsigned const node = spanning(kind, open, close);
    m_tree.append(node, inner);
    return node;
}

/// Of a list among them the elements.
void SyntaxBuilder::append_parts(unsigned node, std::initializer_list<unsigned> parts) {
    for (unsigned const part : parts) {
        if (m_tree[part].kind == NodeKind::list) {
            m_tree.append_children_of(node, part);
        } else {
            m_tree.append(node, part);
        }
    }
}

unsigned SyntaxBuilder::term(Construct construct, unsigned token,
                             std::initializer_list<unsigned> parts) {
    unsigned const node = operation(NodeKind::construct, token, parts);
    m_tree[node].construct = construct;
    return node;
}

unsigned SyntaxBuilder::chain(Construct construct, unsigned token,
                              std::initializer_list<unsigned> parts) {
    unsigned const left = *parts.begin();
    Node const& node = m_tree[left];
    ConstructEntry const& own = entry_of(construct);
    bool const is_open = node.kind == NodeKind::construct && node.parentheses == 0;
    if (!is_open || entry_of(node.construct).level < own.level) {
        return term(construct, token, parts);
    }
    if (entry_of(node.construct).level > own.level) {
        report(token, "parentheses are needed: " + in_quotes(m_tokens.text_of(token)) +
                          " binds tighter than the operator before it");
    } else if (own.association == Association::right) {
        return term(construct, token, parts);
    } else if (node.construct != construct) {
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

unsigned SyntaxBuilder::prefix(unsigned arrow, unsigned communication, unsigned term) {
    Node& node = m_tree[communication];
    node.kind = NodeKind::communication;
    node.token = node.first_token = m_tree[node.first_child].first_token;
    node.last_token = m_tree[node.last_child].last_token;
    return this->term(Construct::prefix, arrow, {communication, term});
}

unsigned SyntaxBuilder::replicated(Construct construct, unsigned token,
                                   std::initializer_list<unsigned> alphabet_or_extra,
                                   unsigned qualifiers, unsigned term) {
    unsigned const results = empty_list();
    unsigned const node = leaf(NodeKind::construct, token);
    m_tree[node].construct = construct;
    append_parts(construct == Construct::alphabetised_parallel ? results : node, alphabet_or_extra);
    m_tree.append(results, term);
    m_tree.append(node, qualified(token, results, qualifiers));
    m_tree[node].last_token = m_tree[term].last_token;
    return node;
}

unsigned SyntaxBuilder::paired_parallel(unsigned token, unsigned pairs) {
    if (m_tree[pairs].first_child == none) {
        report(token, "a replicated alphabetised parallel needs at least one argument");
    }
    return term(Construct::paired_parallel, token, {pairs});
}

unsigned SyntaxBuilder::parenthesised(unsigned term) {
    ++m_tree[term].parentheses;
    return term;
}

void SyntaxBuilder::report(unsigned token, Wording message) {
    m_diagnostics.push_back(diagnostic_at(m_tokens.location(token), std::move(message)));
}

void SyntaxBuilder::report_syntax_error(unsigned token, Wording message, unsigned shown) {
    // What the scanner could not read it has reported already.
    if (m_tokens[token].kind != Parser::token::BAD) {
        report(shown == none ? token : shown, std::move(message));
    }
    lose_names_around(token);
}

/// A definition with an error still defines its name, and an assertion names nothing; but what a broken declaration, or text that
/// is neither, should have named cannot be known.
void SyntaxBuilder::lose_names_around(unsigned token) {
    unsigned start = token;
    while (start > 0 && (start == token || !starts_item(m_tokens[start].kind))) {
        --start;
    }
    TokenKind const kind = m_tokens[start].kind;
    bool const is_known = kind == Parser::token::DEFINED_NAME || kind == Parser::token::ASSERT;
    if (is_known && start != token) {
        return;
    }
    for (unsigned name = start; name < m_tokens.size(); ++name) {
        if (name > start && starts_item(m_tokens[name].kind)) {
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
