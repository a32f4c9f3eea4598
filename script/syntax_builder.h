#pragma once

#include "script/syntax_tree.h"
#include "script/token_list.h"

#include <initializer_list>
#include <string>

namespace Calder::Script {

/// What the grammar calls while it reads: gives it the tokens and makes the nodes.
class SyntaxBuilder {
  public:
    SyntaxBuilder(TokenList const& tokens, Diagnostics& diagnostics);

    /// Its kind; `token` becomes its index. Again and again END at the end.
    TokenKind next_token(unsigned& token);

    /// A node for a definition; `parameters` is none or a list.
    unsigned definition(unsigned name, unsigned parameters, unsigned body);
    void end_definition(unsigned definition);
    /// What the name at a token is defined as could not be read.
    void lose_definition(unsigned name);
    void add_declaration(unsigned channels, unsigned fields);
    void add_datatype(unsigned name, unsigned alternatives);

    // Questions, by their number; those that become assertions.
    unsigned refinement(Question question, unsigned abstract, unsigned token, unsigned concrete);
    /// Reports words that ask nothing, and an argument too few or too many, which is none.
    unsigned question(unsigned process, unsigned open, unsigned last_word, unsigned argument);
    unsigned negated(unsigned question);
    unsigned parenthesised_question(unsigned question);
    void add_assertion(unsigned keyword, unsigned question);
    void lose_assertion(unsigned keyword);

    unsigned leaf(NodeKind kind, unsigned token);
    unsigned negative_number(unsigned minus, unsigned number);
    /// One number of a minus and digits: the smallest one has no positive.
    unsigned negative(unsigned minus, unsigned operand);
    unsigned empty_list();
    unsigned list_of(unsigned first);
    unsigned extended(unsigned list, unsigned element);
    /// What was a list while it was collected, from its first token to its last.
    unsigned finished(unsigned list, NodeKind kind, unsigned first_token, unsigned last_token);
    /// Without children.
    unsigned spanning(NodeKind kind, unsigned first_token, unsigned last_token);
    unsigned tuple(unsigned open, unsigned first, unsigned others, unsigned close);
    unsigned dotted(unsigned left, unsigned dot, unsigned field);
    /// A node of these parts, reported from the first of them, or its token, to the last.
    unsigned operation(NodeKind kind, unsigned token, std::initializer_list<unsigned> parts);
    /// The results, for each way through the qualifiers; both are lists.
    unsigned qualified(unsigned token, unsigned results, unsigned qualifiers);
    unsigned comprehension(NodeKind kind, unsigned open, unsigned results, unsigned qualifiers,
                           unsigned close);

    /// A construct of these parts; of a list among them the elements.
    unsigned term(Construct construct, unsigned token, std::initializer_list<unsigned> parts);
    /// The same for an operator whose left operand, the first part, may be an operator of the same
    /// level: it grows the chain or says that parentheses are needed.
    unsigned chain(Construct construct, unsigned token, std::initializer_list<unsigned> parts);
    unsigned prefix(unsigned arrow, unsigned communication, unsigned term);
    /// `alphabet_or_extra` are the parts in front of the operands; of an alphabetised parallel the
    /// alphabet, which like the term stands for each way through the qualifiers.
    unsigned replicated(Construct construct, unsigned token,
                        std::initializer_list<unsigned> alphabet_or_extra, unsigned qualifiers,
                        unsigned term);
    unsigned paired_parallel(unsigned token, unsigned pairs);
    unsigned parenthesised(unsigned term);

    /// Reports that the text cannot go on with a token, and takes note of the names that are lost
    /// with the definition or declaration around it. `shown` is the token that the message is about,
    /// by default the same.
    void report_syntax_error(unsigned token, Wording message, unsigned shown = none);
    TokenList const& tokens() const { return m_tokens; }

    SyntaxTree take_tree() { return std::move(m_tree); }

  private:
    unsigned lost(unsigned name);
    void end_item() { m_first_of_item = m_tree.size(); }
    void append_parts(unsigned node, std::initializer_list<unsigned> parts);
    void lose_names_around(unsigned token);
    bool binds_names(unsigned name) const;
    std::vector<unsigned> roots_behind(unsigned name) const;
    void report(unsigned token, Wording message);

    TokenList const& m_tokens;
    Diagnostics& m_diagnostics;
    SyntaxTree m_tree;
    unsigned m_next_token = 0;
    unsigned m_first_of_item =
        0; // the first node behind the definition or assertion before this one
    std::vector<AssertionSyntax> m_questions;
};

/// Reads all definitions and declarations; those with errors are reported and left without what
/// they say.
SyntaxTree parse(TokenList const& tokens, Diagnostics& diagnostics);

} // namespace Calder::Script
