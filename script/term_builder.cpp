#include "script/term_builder.h"

#include "csp/external_choice_process.h"
#include "script/limits.h"

#include <algorithm>
#include <string>

namespace Calder::Script {

using ProcessCompiler::no_event;
using ProcessCompiler::ProcessPointer;
using ProcessCompiler::CSP::ExternalChoiceProcess;

namespace {

constexpr unsigned too_deep = nesting_limit + 1;

bool is_term(Node const& node) {
    return node.kind == NodeKind::name || node.kind == NodeKind::construct;
}

bool is_set(Node const& node) {
    return node.kind == NodeKind::listed_set || node.kind == NodeKind::closure_set;
}

} // namespace

TermBuilder::TermBuilder(TokenList const& tokens, SyntaxTree const& tree,
                         DefinitionGraph const& graph, EventTable& events,
                         ProcessCompiler::NamedProcessSource& source, Diagnostics& diagnostics)
    : m_tokens(tokens), m_tree(tree), m_graph(graph), m_events(events), m_source(source),
      m_diagnostics(diagnostics), m_stand_in(new ExternalChoiceProcess(0U)),
      m_bodies(tree.definitions.size()), m_depths(tree.definitions.size(), 1),
      m_values(tree.size()) {}

void TermBuilder::build_all() {
    // References are numbered as they first come up: in the order of the script.
    for (std::size_t index = 0; index < m_bodies.size(); ++index) {
        if (m_graph.is_on_cycle[index]) {
            m_source.reference(std::string(m_tokens.text_of(m_tree.definitions[index].name)));
        }
    }
    for (unsigned const definition : m_graph.order) {
        build(definition);
    }
}

void TermBuilder::build(unsigned index) {
    SyntaxTree::Definition const& definition = m_tree.definitions[index];
    m_sets.clear();
    m_uses_deep_name = false;
    for (unsigned node = definition.first_node; node < definition.end_node; ++node) {
        if (m_tree[node].kind == NodeKind::name) {
            m_values[node] = value_of_name(node);
        } else if (m_tree[node].kind == NodeKind::construct) {
            m_values[node] = value_of_construct(node);
        } else if (is_set(m_tree[node])) {
            m_values[node] = value_of_set(node);
        }
    }
    if (definition.root == none) {
        return;
    }
    m_bodies[index] = std::move(m_values[definition.root].term);
    m_depths[index] = m_values[definition.root].number;
    if (!m_bodies[index]) {
        if (!m_uses_deep_name) {
            report(definition.name, "the term is nested too deeply (more than " +
                                        std::to_string(nesting_limit) + " levels)");
        }
    } else if (m_graph.is_on_cycle[index]) {
        m_source.define(std::string(m_tokens.text_of(definition.name)), m_bodies[index]);
    }
}

TermBuilder::Value TermBuilder::value_of_name(unsigned node) {
    unsigned const target = m_graph.targets[node];
    if (target == none || m_tree.definitions[target].root == none) {
        return {m_stand_in, 1};
    }
    if (m_graph.is_on_cycle[target]) {
        return {m_source.reference(std::string(m_tokens.text_of(m_tree[node].token))), 1};
    }
    m_uses_deep_name |= m_depths[target] == too_deep;
    return {m_bodies[target], m_depths[target]};
}

TermBuilder::Value TermBuilder::value_of_construct(unsigned node) {
    ConstructEntry const& entry = entry_of(m_tree[node].construct);
    check_one_set(node);
    unsigned const depth = depth_over(node);
    Parts const parts = parts_of(node);
    bool const is_complete =
        std::find(parts.events.begin(), parts.events.end(), no_event) == parts.events.end();
    if (depth == too_deep) {
        return {nullptr, too_deep};
    }
    return {is_complete ? entry.build(parts) : m_stand_in, depth};
}

TermBuilder::Value TermBuilder::value_of_set(unsigned node) {
    Set set{{}, true};
    for (unsigned const child : m_tree.children_of(node)) {
        if (m_tree[node].kind == NodeKind::closure_set) {
            set.is_complete &= m_events.insert_closure(child, set.events);
        } else if (unsigned const event = m_events.event_of_set(child); event != no_event) {
            set.events.insert(event);
        } else {
            set.is_complete = false;
        }
    }
    m_sets.push_back(std::move(set));
    return {nullptr, static_cast<unsigned>(m_sets.size() - 1)};
}

/// The sets along a chain must be equal: in one term with many operands, and where synchronising
/// interrupts stand in a row.
void TermBuilder::check_one_set(unsigned node) {
    Construct const construct = m_tree[node].construct;
    if (construct != Construct::synchronising_interrupt &&
        entry_of(construct).association != Association::nary) {
        return;
    }
    std::vector<unsigned> sets;
    unsigned const left = m_tree[node].first_child;
    if (m_tree[left].kind == NodeKind::construct && m_tree[left].construct == construct &&
        !m_tree[left].is_parenthesised) {
        sets.push_back(m_tree[m_tree[left].first_child].next);
    }
    for (unsigned const child : m_tree.children_of(node)) {
        if (is_set(m_tree[child])) {
            sets.push_back(child);
        }
    }
    for (std::size_t index = 1; index < sets.size(); ++index) {
        Set const& before = m_sets[m_values[sets[index - 1]].number];
        Set const& after = m_sets[m_values[sets[index]].number];
        if (before.is_complete && after.is_complete && before.events != after.events) {
            report(m_tree[sets[index]].token,
                   "parentheses are needed: this set is not that of the operator before it");
            return;
        }
    }
}

Parts TermBuilder::parts_of(unsigned node) {
    bool const has_one_set = entry_of(m_tree[node].construct).association == Association::nary;
    std::vector<unsigned> terms;
    std::vector<unsigned> events;
    std::vector<BitSet> sets;
    for (unsigned const child : m_tree.children_of(node)) {
        if (is_term(m_tree[child])) {
            terms.push_back(child);
        } else if (m_tree[child].kind == NodeKind::event) {
            events.push_back(child);
        } else if (sets.empty() || !has_one_set) {
            sets.push_back(m_sets[m_values[child].number].events);
        }
    }
    Parts parts{OwningArray<ProcessPointer>(terms.size()), std::move(sets),
                event_numbers(m_tree[node].construct, events)};
    std::transform(terms.begin(), terms.end(), parts.processes.begin(),
                   [&](unsigned term) { return std::move(m_values[term].term); });
    return parts;
}

std::vector<unsigned> TermBuilder::event_numbers(Construct construct,
                                                 std::vector<unsigned> const& events) {
    std::vector<unsigned> numbers;
    for (std::size_t index = 0; index < events.size(); ++index) {
        // A link of tick to itself goes without saying.
        if (construct == Construct::linked_parallel && index % 2 == 0 &&
            m_events.is_tick(events[index]) && m_events.is_tick(events[index + 1])) {
            ++index;
        } else {
            numbers.push_back(m_events.visible_event(events[index]));
        }
    }
    return numbers;
}

unsigned TermBuilder::depth_over(unsigned node) const {
    unsigned deepest = 0;
    for (unsigned const child : m_tree.children_of(node)) {
        if (is_term(m_tree[child])) {
            deepest = std::max(deepest, m_values[child].number);
        }
    }
    return std::min(deepest + 1, too_deep);
}

void TermBuilder::report(unsigned token, std::string message) {
    m_diagnostics.push_back({m_tokens.location(token), std::move(message)});
}

} // namespace Calder::Script
