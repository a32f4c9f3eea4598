#pragma once

#include "script/syntax_tree.h"
#include "script/token_list.h"

#include <array>
#include <initializer_list>
#include <string>

namespace Calder::Script {

/// What the grammar calls while it reads: gives it the tokens and makes the nodes.
class SyntaxBuilder {
  public:
    SyntaxBuilder(TokenList const& tokens, Diagnostics& diagnostics);

    /// Its kind; `token` becomes its index. Again and again END at the end.
    TokenKind next_token(unsigned& token);

    void start_definition(unsigned name);
    void end_definition(unsigned root);
    void add_declaration(unsigned channels, unsigned fields = none);

    unsigned leaf(NodeKind kind, unsigned token);
    /// The node of an event or a value, now up to this token.
    unsigned reaching(unsigned node, unsigned last_token);
    unsigned empty_list();
    unsigned list_of(unsigned first);
    unsigned extended(unsigned list, unsigned element);
    /// What was a list while it was collected.
    unsigned finished(unsigned list, NodeKind kind, unsigned token);

    /// A construct of these parts; of a list among them the elements.
    unsigned term(Construct construct, unsigned token, std::initializer_list<unsigned> parts);
    /// The same for an operator whose left operand, the first part, may be an operator of the same
    /// level: it grows the chain or says that parentheses are needed.
    unsigned chain(Construct construct, unsigned token, std::initializer_list<unsigned> parts);
    unsigned replicated_parallel(unsigned token, unsigned arguments,
                                 std::array<unsigned, 4> const& letters);
    unsigned parenthesised(unsigned term);

    /// Reports that the text cannot go on with a token, and takes note of the names that are lost
    /// with the definition or declaration around it. `shown` is the token that the message is about,
    /// by default the same.
    void report_syntax_error(unsigned token, std::string message, unsigned shown = none);
    TokenList const& tokens() const { return m_tokens; }

    SyntaxTree take_tree() { return std::move(m_tree); }

  private:
    bool starts_item(unsigned token) const;
    void lose_names_around(unsigned token);
    void report(unsigned token, std::string message);

    TokenList const& m_tokens;
    Diagnostics& m_diagnostics;
    SyntaxTree m_tree;
    unsigned m_next_token = 0;
};

/// Reads all definitions and declarations; those with errors are reported and left without a term.
SyntaxTree parse(TokenList const& tokens, Diagnostics& diagnostics);

} // namespace Calder::Script
