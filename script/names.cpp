#include "script/names.h"

#include "script/binder.h"
#include "script/process_kinds.h"

#include <algorithm>
#include <string>

namespace Calder::Script {

namespace {

/// The definitions of the script itself, and what its declarations introduce.
class Declarer {
  public:
    Declarer(TokenList const& tokens, SyntaxTree const& tree, unsigned first_added,
             unsigned end_added, NameTable& names, Diagnostics& diagnostics)
        : m_tokens(tokens), m_tree(tree), m_first_added(first_added), m_end_added(end_added),
          m_names(names), m_diagnostics(diagnostics) {}

    void run() {
        m_names.lost = m_tree.lost_names;
        m_names.bindings.resize(m_tree.size());
        for (unsigned const node : m_tree.definitions) {
            add(node);
        }
        for (AssertionSyntax const& assertion : m_tree.assertions) {
            add_parts(assertion);
        }
        for (unsigned const declaration : m_tree.declarations) {
            for (unsigned const child : m_tree.children_of(declaration)) {
                if (m_tree[child].kind == NodeKind::channel) {
                    m_names.channels.insert(text_of(child));
                    m_names.declared.push_back(text_of(child));
                }
            }
        }
        for (unsigned const datatype : m_tree.datatypes) {
            add_datatype(datatype);
        }
        for (unsigned const declaration : m_tree.declarations) {
            unsigned const last = m_tree[declaration].last_child;
            if (m_tree[last].kind != NodeKind::channel) {
                add_values_of(last);
            }
        }
    }

  private:
    bool is_added(unsigned token) const {
        unsigned const source = m_tokens[token].source;
        return source >= m_first_added && source < m_end_added;
    }

    void add(unsigned node) {
        unsigned const token = m_tree[node].token;
        unsigned const parameters = m_tree[m_tree[node].first_child].child_count;
        std::string name(m_tokens.text_of(token));
        auto const found = m_names.by_name.find(name);
        if (found != m_names.by_name.end()) {
            NamedDefinition& first = m_names.definitions[found->second];
            if (is_added(first.token) && !is_added(token)) {
                first.is_replacement = true;
                if (parameters > 0) {
                    report(first.token,
                           in_quotes(name) + " has parameters: only a constant can be replaced");
                }
                return;
            }
            if (continues(found->second, parameters)) {
                first.parameter_count = parameters;
                first.clauses.push_back(node);
                first.is_lost |= is_lost(node);
                return;
            }
        }
        if (found != m_names.by_name.end() && found->second == m_last && parameters > 0 &&
            m_names.definitions[m_last].parameter_count > 0) {
            report(token, "the clauses of " + in_quotes(name) + " have " +
                              std::to_string(m_names.definitions[m_last].parameter_count) +
                              " and " + std::to_string(parameters) + " parameters");
            return;
        }
        auto const number = static_cast<unsigned>(m_names.definitions.size());
        m_names.definitions.push_back({.name = name,
                                       .token = token,
                                       .clauses = {node},
                                       .parameter_count = parameters,
                                       .is_lost = is_lost(node),
                                       .is_constant = is_added(token) && name != asked_name});
        m_last = number;
        if (!is_lost(node) && m_tree[m_tree[node].last_child].kind != NodeKind::construct) {
            m_names.hidden.insert(m_tokens.text_of(token));
        }
        if (found == m_names.by_name.end()) {
            m_names.by_name.emplace(std::move(name), number);
        } else {
            m_names.definitions.back().is_repetition = true;
        }
    }

    /// Their name is a reserved word, which nobody else can use.
    void add_parts(AssertionSyntax const& assertion) {
        m_names.first_parts.push_back(static_cast<unsigned>(m_names.definitions.size()));
        AssertionPart part = AssertionPart::process;
        for (unsigned const node : assertion.parts) {
            m_names.definitions.push_back({.name = "assert",
                                           .token = m_tree[node].token,
                                           .clauses = {node},
                                           .part = part,
                                           .is_lost = is_lost(node)});
            part = assertion.question == Question::has_trace ? AssertionPart::trace
                   : assertion.question == Question::never   ? AssertionPart::events
                                                             : AssertionPart::process;
        }
    }

    /// Whether a definition is the next clause of the one before it. How many parameters has what
    /// could not be read is not known.
    bool continues(unsigned first, unsigned parameters) const {
        NamedDefinition const& definition = m_names.definitions[first];
        bool const may_have_any = definition.is_lost && definition.parameter_count == 0;
        return first == m_last && parameters > 0 &&
               (parameters == definition.parameter_count || may_have_any);
    }

    bool is_lost(unsigned node) const { return m_tree[node].child_count < 2; }

    void add_datatype(unsigned datatype) {
        std::string_view const name = m_tokens.text_of(m_tree[datatype].token);
        check_new(m_tree[datatype].token, name);
        m_names.datatypes.try_emplace(name, datatype);
        m_names.declared.push_back(name);
        for (unsigned const alternative : m_tree.children_of(datatype)) {
            bool const has_fields = m_tree[alternative].kind == NodeKind::dotted;
            unsigned const head = has_fields ? m_tree[alternative].first_child : alternative;
            if (m_tree[head].kind != NodeKind::name) {
                report(m_tree[head].token,
                       "an alternative of a datatype begins with a name of its own");
                continue;
            }
            unsigned const token = m_tree[head].token;
            check_new(token, m_tokens.text_of(token));
            m_names.values.try_emplace(m_tokens.text_of(token), alternative);
            m_names.declared.push_back(m_tokens.text_of(token));
        }
    }

    void check_new(unsigned token, std::string_view name) {
        if (NameTable::is_truth_value(name)) {
            report(token, in_quotes(name) + " is a truth value");
        } else if (m_names.datatypes.contains(name) || m_names.values.contains(name)) {
            report(token, in_quotes(name) + " is already a datatype or one of its values");
        } else if (m_names.channels.contains(name)) {
            report(token, in_quotes(name) + " is already a channel");
        } else if (auto const found = m_names.by_name.find(std::string(name));
                   found != m_names.by_name.end()) {
            report(token, in_quotes(name) + " is already defined in " +
                              line_of(m_tokens, m_names.definitions[found->second].token, token));
        }
    }

    /// The names in the sets that the fields of a channel list.
    void add_values_of(unsigned fields) {
        std::vector<unsigned> sets{fields};
        if (m_tree[fields].kind == NodeKind::dotted) {
            auto const children = m_tree.children_of(fields);
            sets.clear();
            for (unsigned const child : children) {
                sets.push_back(child);
            }
        }
        for (unsigned const set : sets) {
            if (m_tree[set].kind != NodeKind::set) {
                continue;
            }
            for (unsigned const member : m_tree.children_of(set)) {
                bool const is_name = m_tree[member].kind == NodeKind::name &&
                                     !NameTable::is_truth_value(text_of(member));
                if (is_name && m_names.values.try_emplace(text_of(member), none).second) {
                    m_names.declared.push_back(text_of(member));
                }
            }
        }
    }

    std::string_view text_of(unsigned node) const { return m_tokens.text_of(m_tree[node].token); }
    void report(unsigned token, std::string message) {
        m_diagnostics.push_back({m_tokens.location(token), std::move(message)});
    }

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    unsigned m_first_added;
    unsigned m_end_added;
    NameTable& m_names;
    Diagnostics& m_diagnostics;
    unsigned m_last = none; // the definition before this one
};

} // namespace

NameTable resolve_names(TokenList const& tokens, SyntaxTree const& tree, unsigned first_added,
                        unsigned end_added, Diagnostics& diagnostics) {
    NameTable names;
    Declarer(tokens, tree, first_added, end_added, names, diagnostics).run();
    bind_names(tokens, tree, names, diagnostics);
    infer_processes(tokens, tree, names);
    for (NamedDefinition const& definition : names.definitions) {
        if (definition.is_repetition) {
            NamedDefinition const& first = names.definitions[names.by_name.at(definition.name)];
            std::string const what = first.is_process ? "the process " : "";
            diagnostics.push_back({tokens.location(definition.token),
                                   what + in_quotes(definition.name) + " is already defined in " +
                                       line_of(tokens, first.token, definition.token)});
        }
    }
    return names;
}

} // namespace Calder::Script
