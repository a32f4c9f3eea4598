#include "script/definition_graph.h"

#include "core/cycle_search.h"
#include "script/hints.h"
#include "script/suggestion.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Calder::Script {

namespace {

class NameResolution {
  public:
    NameResolution(TokenList const& tokens, SyntaxTree const& tree, EventTable const& events,
                   Diagnostics& diagnostics)
        : m_tokens(tokens), m_tree(tree), m_events(events), m_diagnostics(diagnostics) {}

    std::vector<unsigned> run() {
        for (unsigned index = 0; index < m_tree.definitions.size(); ++index) {
            add(index);
        }
        std::vector<unsigned> targets(m_tree.size(), none);
        for (unsigned node = 0; node < m_tree.size(); ++node) {
            if (m_tree[node].kind == NodeKind::name) {
                targets[node] = resolve(m_tree[node].token);
            }
        }
        return targets;
    }

  private:
    void add(unsigned index) {
        unsigned const name = m_tree.definitions[index].name;
        auto const [entry, is_new] = m_definitions.try_emplace(m_tokens.text_of(name), index);
        if (!is_new) {
            Token const& first = m_tokens[m_tree.definitions[entry->second].name];
            report(name, "the process " + in_quotes(m_tokens.text_of(name)) +
                             " is already defined in line " + std::to_string(first.line));
        }
    }

    unsigned resolve(unsigned token) {
        std::string_view const name = m_tokens.text_of(token);
        auto const entry = m_definitions.find(name);
        if (entry != m_definitions.end()) {
            return entry->second;
        }
        if (!m_tree.lost_names.contains(name) && !m_tokens.is_reported(token)) {
            report(token, "the process " + in_quotes(name) + " is not defined" + hint_for(name));
        }
        return none;
    }

    std::string hint_for(std::string_view name) {
        if (m_events.is_channel(name)) {
            return ": " + in_quotes(name) + " is an event";
        }
        if (std::string const hint = word_hint(name); !hint.empty()) {
            return ": " + hint;
        }
        Suggestion suggestion(name, m_suggestion_budget);
        suggestion.consider("STOP");
        suggestion.consider("SKIP");
        for (SyntaxTree::Definition const& definition : m_tree.definitions) {
            if (!suggestion.wants_more()) {
                break;
            }
            suggestion.consider(m_tokens.text_of(definition.name));
        }
        return suggestion.text();
    }

    void report(unsigned token, std::string message) {
        m_diagnostics.push_back({m_tokens.location(token), std::move(message)});
    }

    TokenList const& m_tokens;
    SyntaxTree const& m_tree;
    EventTable const& m_events;
    Diagnostics& m_diagnostics;
    std::unordered_map<std::string_view, unsigned> m_definitions;
    unsigned m_suggestion_budget = suggestion_budget;
};

/// By definition: those that the names in it stand for, in the order of their places.
std::vector<std::vector<unsigned>> used_definitions(SyntaxTree const& tree,
                                                    std::vector<unsigned> const& targets) {
    std::vector<std::vector<unsigned>> used;
    used.reserve(tree.definitions.size());
    for (SyntaxTree::Definition const& definition : tree.definitions) {
        std::vector<unsigned>& each = used.emplace_back();
        std::copy_if(targets.begin() + definition.first_node, targets.begin() + definition.end_node,
                     std::back_inserter(each), [](unsigned target) { return target != none; });
    }
    return used;
}

void find_cycles(SyntaxTree const& tree, DefinitionGraph& graph) {
    auto const used = used_definitions(tree, graph.targets);
    graph.is_on_cycle.resize(used.size());
    auto const take_cycle = [&](std::span<unsigned const> members) {
        graph.order.insert(graph.order.end(), members.rbegin(), members.rend());
        unsigned const last = members.back();
        bool const is_cycle = members.size() > 1 || std::find(used[last].begin(), used[last].end(),
                                                              last) != used[last].end();
        for (unsigned const member : members) {
            graph.is_on_cycle[member] = is_cycle;
        }
    };
    for_each_cycle(
        static_cast<unsigned>(used.size()),
        [&](unsigned definition) -> auto const& { return used[definition]; }, take_cycle);
}

} // namespace

DefinitionGraph connect_definitions(TokenList const& tokens, SyntaxTree const& tree,
                                    EventTable const& events, Diagnostics& diagnostics) {
    DefinitionGraph graph;
    graph.targets = NameResolution(tokens, tree, events, diagnostics).run();
    find_cycles(tree, graph);
    return graph;
}

} // namespace Calder::Script
