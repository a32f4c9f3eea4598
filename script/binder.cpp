#include "script/binder.h"

#include "script/limits.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Calder::Script {

namespace {

class Binder {
  public:
    Binder(TokenList const& tokens, SyntaxTree const& tree, NameTable& names,
           Diagnostics& diagnostics)
        : m_tokens(tokens), m_tree(tree), m_names(names), m_diagnostics(diagnostics) {}

    void run() {
        auto const count = static_cast<unsigned>(m_names.definitions.size());
        for (unsigned number = 0; number < count; ++number) {
            NamedDefinition const& definition = m_names.definitions[number];
            if (!definition.is_repetition && definition.has_name()) {
                m_scope[m_tokens.text_of(definition.token)].push_back(
                    {Binding::Kind::definition, number});
            }
        }
        for (unsigned number = 0; number < count; ++number) {
            bind_definition(number);
        }
        for (unsigned const declaration : m_tree.declarations) {
            bind_outside(m_tree[declaration].last_child);
        }
        for (unsigned const datatype : m_tree.datatypes) {
            for (unsigned const alternative : m_tree.children_of(datatype)) {
                bind_outside(alternative);
            }
        }
    }

    /// Definitions that use local ones need what those need.
    void complete_captures() {
        std::vector<std::vector<unsigned>> users(m_names.definitions.size());
        std::vector<unsigned> waiting; // those that need more than their users know
        for (auto const& [user, used] : m_uses) {
            users[used].push_back(user);
            waiting.push_back(used);
        }
        while (!waiting.empty()) {
            unsigned const used = waiting.back();
            waiting.pop_back();
            for (unsigned const user : users[used]) {
                if (hand_up(user, used)) {
                    waiting.push_back(user);
                }
            }
        }
    }

    /// When all definitions are known.
    void resolve_paths() {
        for (auto const& [node, path] : m_paths) {
            if (auto const found = m_names.by_name.find(path); found != m_names.by_name.end()) {
                m_names.bindings[node] = {Binding::Kind::definition, found->second};
            }
        }
    }

  private:
    void bind_definition(unsigned number) {
        // A reference would not outlive the local definitions that are added meanwhile.
        std::vector<unsigned> const clauses = m_names.definitions[number].clauses;
        unsigned const outer = std::exchange(m_definition, number);
        for (unsigned const clause : clauses) {
            unsigned const deepest = m_tree[clause].depth;
            if (deepest > deepest_node) {
                report(m_tree[clause].token, "the term is nested too deeply (more than " +
                                                 std::to_string(nesting_limit) + " levels)");
                m_names.definitions[number].is_lost = true;
                continue;
            }
            std::size_t const mark = m_bound.size();
            std::size_t const first = m_names.variables.size();
            for (unsigned const parameter : m_tree.children_of(m_tree[clause].first_child)) {
                bind_pattern(parameter, first);
            }
            if (m_tree[clause].child_count > 1) {
                visit(m_tree[clause].last_child);
            } else if (auto const parts = m_tree.fragments.find(clause);
                       parts != m_tree.fragments.end()) {
                for (unsigned const part : parts->second) {
                    visit(part);
                }
            }
            unbind(mark);
        }
        m_definition = outer;
    }

    void bind_outside(unsigned node) {
        if (m_tree[node].depth <= deepest_node) {
            visit(node);
        } else {
            report(m_tree[node].first_token, "this is nested too deeply");
        }
    }

    /// Patterns have no uses but for names of values, which need no binding. Variables from the
    /// first one on belong to the same pattern.
    void bind_pattern(unsigned node, std::size_t first) {
        if (m_tree[node].kind == NodeKind::name) {
            std::string_view const name = text_of(node);
            if (name == "_" || m_names.is_constant(name)) {
                return;
            }
            if (bound_from(Binding::Kind::variable, first, name) != none) {
                report(m_tree[node].token, in_quotes(name) + " stands twice in one pattern");
                return;
            }
            auto const variable = static_cast<unsigned>(m_names.variables.size());
            m_names.variables.push_back({m_tree[node].token, m_definition});
            m_names.bindings[node] = {Binding::Kind::variable, variable};
            bind(name, m_names.bindings[node]);
            return;
        }
        bool const has_head = m_tree[node].kind == NodeKind::dotted;
        for (unsigned const child : m_tree.children_of(node)) {
            if (!has_head || child != m_tree[node].first_child) {
                bind_pattern(child, first);
            }
        }
    }

    /// What the name stands for where that is of the kind and no older than the first; or none.
    unsigned bound_from(Binding::Kind kind, std::size_t first, std::string_view name) const {
        auto const found = m_scope.find(name);
        bool const is_bound = found != m_scope.end() && !found->second.empty() &&
                              found->second.back().kind == kind &&
                              found->second.back().number >= first;
        return is_bound ? found->second.back().number : none;
    }

    void visit(unsigned node) {
        switch (m_tree[node].kind) {
        case NodeKind::name:
        case NodeKind::call: use(node); break;
        case NodeKind::let: visit_let(node); return;
        case NodeKind::comprehension: visit_comprehension(node); return;
        case NodeKind::dotted: use_local_path(node); break;
        case NodeKind::construct:
            if (m_tree[node].construct == Construct::prefix) {
                visit_prefix(node);
                return;
            }
            break;
        default: break; // parts alone
        }
        for (unsigned const child : m_tree.children_of(node)) {
            visit(child);
        }
    }

    void visit_comprehension(unsigned node) {
        std::size_t const mark = m_bound.size();
        unsigned const results = m_tree[node].first_child;
        for (unsigned child = m_tree[results].next; child != none; child = m_tree[child].next) {
            if (m_tree[child].kind == NodeKind::generator) {
                visit(m_tree[child].last_child);
                bind_pattern(m_tree[child].first_child, m_names.variables.size());
            } else {
                visit(child);
            }
        }
        visit(results);
        unbind(mark);
    }

    /// What an input binds is known in the items behind it and behind the arrow.
    void visit_prefix(unsigned node) {
        std::size_t const mark = m_bound.size();
        std::size_t const first = m_names.variables.size();
        for (unsigned const item : m_tree.children_of(m_tree[node].first_child)) {
            bool const is_input =
                m_tree[item].kind == NodeKind::input || m_tree[item].kind == NodeKind::chosen_input;
            if (!is_input) {
                visit(item);
                continue;
            }
            if (m_tree[item].child_count > 1) {
                visit(m_tree[item].last_child);
            }
            bind_pattern(m_tree[item].first_child, first);
        }
        for (std::size_t i = first; i < m_names.variables.size(); ++i) {
            m_names.variables[i].is_used = false; // in the items it may have been
        }
        visit(m_tree[node].last_child);
        unbind(mark);
    }

    void visit_let(unsigned node) {
        if (m_definition == none) {
            report(m_tree[node].token, "'let' may not stand in a declaration: define a name");
            return;
        }
        std::size_t const mark = m_bound.size();
        auto const first = static_cast<unsigned>(m_names.definitions.size());
        for (unsigned const child : m_tree.children_of(node)) {
            if (m_tree[child].kind == NodeKind::definition) {
                add_local(child, first);
            }
        }
        auto const end = static_cast<unsigned>(m_names.definitions.size());
        for (unsigned number = first; number < end; ++number) {
            bind_definition(number);
        }
        visit(m_tree[node].last_child);
        unbind(mark);
    }

    void add_local(unsigned node, unsigned first_of_let) {
        unsigned const token = m_tree[node].token;
        std::string_view const own = m_tokens.text_of(token);
        unsigned const parameters = m_tree[m_tree[node].first_child].child_count;
        if (unsigned const before = bound_from(Binding::Kind::definition, first_of_let, own);
            before != none) {
            NamedDefinition& other = m_names.definitions[before];
            if (before + 1 == m_names.definitions.size() && parameters > 0 &&
                parameters == other.parameter_count) {
                other.clauses.push_back(node);
                return;
            }
            report(token, in_quotes(own) + " is already defined in " +
                              line_of(m_tokens, other.token, token));
            return;
        }
        auto const number = static_cast<unsigned>(m_names.definitions.size());
        m_names.definitions.push_back({.name = path_of(own),
                                       .token = token,
                                       .parent = m_definition,
                                       .clauses = {node},
                                       .parameter_count = parameters});
        m_names.by_name.emplace(m_names.definitions.back().name, number);
        bind(own, {Binding::Kind::definition, number});
    }

    /// `P.Q`; `P.2.Q` where that is taken.
    std::string path_of(std::string_view own) {
        std::string const outer =
            m_definition == none ? "" : m_names.definitions[m_definition].name + ".";
        std::string path = outer + std::string(own);
        unsigned& count = m_path_counts[path];
        if (++count > 1) {
            path = outer + std::to_string(count) + "." + std::string(own);
        }
        return path;
    }

    /// A local definition, asked for from outside: the longest path that is one.
    void use_local_path(unsigned node) {
        unsigned const head = m_tree[node].first_child;
        if (m_tree[head].kind != NodeKind::name || !is_definition_of_script(text_of(head))) {
            return;
        }
        std::string path(text_of(head));
        for (unsigned child = m_tree[head].next; child != none; child = m_tree[child].next) {
            NodeKind const kind = m_tree[child].kind;
            if (kind != NodeKind::name && kind != NodeKind::number && kind != NodeKind::call) {
                return;
            }
            path += "." + std::string(text_of(child));
        }
        m_paths.emplace_back(node, std::move(path));
    }

    /// And nothing within it has the same name.
    bool is_definition_of_script(std::string_view name) const {
        auto const found = m_scope.find(name);
        if (found == m_scope.end() || found->second.empty()) {
            return false;
        }
        Binding const innermost = found->second.back();
        return innermost.kind == Binding::Kind::definition &&
               m_names.definitions[innermost.number].parent == none;
    }

    void use(unsigned node) {
        auto const found = m_scope.find(text_of(node));
        if (found == m_scope.end() || found->second.empty()) {
            return;
        }
        Binding const binding = found->second.back();
        m_names.bindings[node] = binding;
        if (m_definition == none) {
            return;
        }
        if (binding.kind == Binding::Kind::variable) {
            Variable& variable = m_names.variables[binding.number];
            variable.is_used = true;
            if (variable.owner != m_definition) {
                add_capture(m_definition, binding.number);
            }
        } else if (m_names.definitions[binding.number].parent != none) {
            m_uses.emplace_back(m_definition, binding.number);
        }
    }

    bool add_capture(unsigned definition, unsigned variable) {
        std::vector<unsigned>& captures = m_names.definitions[definition].captures;
        auto const place = std::lower_bound(captures.begin(), captures.end(), variable);
        if (place != captures.end() && *place == variable) {
            return false;
        }
        captures.insert(place, variable);
        return true;
    }

    bool hand_up(unsigned user, unsigned used) {
        bool changed = false;
        if (user != used) {
            for (unsigned const variable : m_names.definitions[used].captures) {
                if (m_names.variables[variable].owner != user) {
                    changed |= add_capture(user, variable);
                }
            }
        }
        return changed;
    }

    void bind(std::string_view name, Binding binding) {
        m_scope[name].push_back(binding);
        m_bound.push_back(name);
    }

    void unbind(std::size_t mark) {
        for (; m_bound.size() > mark; m_bound.pop_back()) {
            m_scope[m_bound.back()].pop_back();
        }
    }

    std::string_view text_of(unsigned node) const { return m_tokens.text_of(m_tree[node].token); }
    void report(unsigned token, std::string message) {
        m_diagnostics.push_back({m_tokens.location(token), std::move(message)});
    }

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    NameTable& m_names;
    Diagnostics& m_diagnostics;
    unsigned m_definition = none;                                       // the one that is visited
    std::unordered_map<std::string_view, std::vector<Binding>> m_scope; // the innermost one last
    std::vector<std::string_view> m_bound;                              // in the order of binding
    std::vector<std::pair<unsigned, unsigned>> m_uses;                  // of local definitions
    std::vector<std::pair<unsigned, std::string>> m_paths;              // nodes that may be ones
    std::unordered_map<std::string, unsigned> m_path_counts;
};

} // namespace

void bind_names(TokenList const& tokens, SyntaxTree const& tree, NameTable& names,
                Diagnostics& diagnostics) {
    Binder binder(tokens, tree, names, diagnostics);
    binder.run();
    binder.complete_captures();
    binder.resolve_paths();
}

} // namespace Calder::Script
