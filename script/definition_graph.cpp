#include "script/definition_graph.h"

#include "script/hints.h"
#include "script/suggestion.h"

#include <algorithm>
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

/// The strongly connected components of the definitions, each behind those it leads to (Tarjan
/// 1972), with the recursion on a stack of its own.
class CycleSearch {
  public:
    CycleSearch(SyntaxTree const& tree, DefinitionGraph& graph)
        : m_tree(tree), m_graph(graph), m_places(tree.definitions.size()) {}

    void run() {
        m_graph.is_on_cycle.resize(m_places.size());
        for (unsigned definition = 0; definition < m_places.size(); ++definition) {
            if (m_places[definition].number == none) {
                search_from(definition);
            }
        }
    }

  private:
    struct Place {
        unsigned number = none; // in the order of first visits
        unsigned lowest = none; // the lowest number that is reached within the component
        unsigned next_node = 0;
        bool is_open = false; // its component is not complete
    };

    void search_from(unsigned start) {
        enter(start);
        while (!m_path.empty()) {
            unsigned const definition = m_path.back();
            Place& place = m_places[definition];
            unsigned const target = next_target(definition);
            if (target == none) {
                leave(definition);
            } else if (m_places[target].number == none) {
                enter(target);
            } else if (m_places[target].is_open) {
                place.lowest = std::min(place.lowest, m_places[target].number);
                if (target == definition) {
                    m_graph.is_on_cycle[definition] = true;
                }
            }
        }
    }

    /// The definition that the next name in this one stands for; none behind the last.
    unsigned next_target(unsigned definition) {
        unsigned& node = m_places[definition].next_node;
        while (node < m_tree.definitions[definition].end_node) {
            unsigned const target = m_graph.targets[node++];
            if (target != none) {
                return target;
            }
        }
        return none;
    }

    void enter(unsigned definition) {
        m_places[definition] = {m_count, m_count, m_tree.definitions[definition].first_node, true};
        ++m_count;
        m_path.push_back(definition);
        m_open.push_back(definition);
    }

    void leave(unsigned definition) {
        m_path.pop_back();
        Place const& place = m_places[definition];
        if (!m_path.empty()) {
            Place& before = m_places[m_path.back()];
            before.lowest = std::min(before.lowest, place.lowest);
        }
        if (place.lowest != place.number) {
            return;
        }
        bool const is_alone = m_open.back() == definition;
        unsigned member = none;
        do {
            member = m_open.back();
            m_open.pop_back();
            m_places[member].is_open = false;
            m_graph.order.push_back(member);
            if (!is_alone) {
                m_graph.is_on_cycle[member] = true;
            }
        } while (member != definition);
    }

    SyntaxTree const& m_tree;
    DefinitionGraph& m_graph;
    std::vector<Place> m_places;
    std::vector<unsigned> m_path;
    std::vector<unsigned> m_open;
    unsigned m_count = 0;
};

} // namespace

DefinitionGraph connect_definitions(TokenList const& tokens, SyntaxTree const& tree,
                                    EventTable const& events, Diagnostics& diagnostics) {
    DefinitionGraph graph;
    graph.targets = NameResolution(tokens, tree, events, diagnostics).run();
    CycleSearch(tree, graph).run();
    return graph;
}

} // namespace Calder::Script
