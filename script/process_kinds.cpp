#include "script/process_kinds.h"

#include "script/builtins.h"

#include <string_view>
#include <vector>

namespace Calder::Script {

namespace {

/// Which definitions are processes: the last thing that they come to tells, and where that is
/// another definition, that one. What nothing tells is a process: it runs only itself.
class KindInference {
  public:
    KindInference(TokenList const& tokens, SyntaxTree const& tree, NameTable& names)
        : m_tokens(tokens), m_tree(tree), m_names(names) {}

    void run() {
        std::size_t const count = m_names.definitions.size();
        m_users.resize(count);
        m_is_value.resize(count);
        for (unsigned number = 0; number < count; ++number) {
            for (unsigned const clause : m_names.definitions[number].clauses) {
                if (m_tree[clause].child_count > 1) {
                    look_at(number, m_tree.child(clause, 1));
                }
            }
        }
        while (!m_found.empty()) {
            unsigned const value = m_found.back();
            m_found.pop_back();
            for (unsigned const user : m_users[value]) {
                found_value(user);
            }
        }
        for (unsigned number = 0; number < count; ++number) {
            NamedDefinition& definition = m_names.definitions[number];
            definition.is_process = definition.has_name()
                                        ? !m_is_value[number]
                                        : definition.part == AssertionPart::process;
        }
    }

  private:
    void look_at(unsigned definition, unsigned body) {
        std::vector<unsigned> waiting{body};
        while (!waiting.empty()) {
            unsigned const node = waiting.back();
            waiting.pop_back();
            switch (m_tree[node].kind) {
            case NodeKind::construct: break;
            case NodeKind::let: waiting.push_back(m_tree[node].last_child); break;
            case NodeKind::conditional:
                waiting.push_back(m_tree.child(node, 1));
                waiting.push_back(m_tree.child(node, 2));
                break;
            case NodeKind::dotted:
            case NodeKind::name:
            case NodeKind::call: look_at_name(definition, node); break;
            case NodeKind::number:
            case NodeKind::tuple:
            case NodeKind::sequence:
            case NodeKind::set:
            case NodeKind::closure:
            case NodeKind::operation:
            case NodeKind::conjunction:
            case NodeKind::disjunction: found_value(definition); break;
            case NodeKind::absorbed:
            case NodeKind::list:
            case NodeKind::range:
            case NodeKind::comprehension:
            case NodeKind::generator:
            case NodeKind::pair:
            case NodeKind::communication:
            case NodeKind::output:
            case NodeKind::input:
            case NodeKind::chosen_input:
            case NodeKind::definition:
            case NodeKind::declaration:
            case NodeKind::channel:
            case NodeKind::datatype: break; // parts of something else
            }
        }
    }

    void look_at_name(unsigned definition, unsigned node) {
        if (m_names.definitions[definition].is_constant) {
            found_value(definition);
            return;
        }
        Binding const binding = m_names.bindings[node];
        if (binding.kind == Binding::Kind::definition) {
            m_users[binding.number].push_back(definition);
        } else if (binding.kind == Binding::Kind::variable || is_known_value(node)) {
            found_value(definition);
        }
    }

    /// What is unknown is taken for a process, which it was meant to be more often than not.
    bool is_known_value(unsigned node) const {
        unsigned const head =
            m_tree[node].kind == NodeKind::dotted ? m_tree[node].first_child : node;
        std::string_view const name = m_tokens.text_of(m_tree[head].token);
        return head != node || m_names.channels.contains(name) || m_names.values.contains(name) ||
               m_names.datatypes.contains(name) || find_builtin(name) != nullptr;
    }

    void found_value(unsigned definition) {
        if (!m_is_value[definition]) {
            m_is_value[definition] = true;
            m_found.push_back(definition);
        }
    }

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    NameTable& m_names;
    std::vector<std::vector<unsigned>> m_users; // by definition: those that come to it
    std::vector<bool> m_is_value;
    std::vector<unsigned> m_found;
};

} // namespace

void infer_processes(TokenList const& tokens, SyntaxTree const& tree, NameTable& names) {
    KindInference(tokens, tree, names).run();
}

} // namespace Calder::Script
