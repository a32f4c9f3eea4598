#pragma once

#include "state_space/lts_builder.h"
#include "tests/support/fake_process.h"

#include <memory>
#include <new>

namespace Calder::StateSpace::Testing {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::ProcessPointer;
using ProcessCompiler::TransitionVisitor;

using Row = std::vector<std::pair<unsigned, unsigned>>; // (event, target)
using Rows = std::vector<Row>;

/// Spread as those of real terms are, and even like them.
inline std::uint64_t usual_hash(unsigned node) {
    return hash_combine(7, node);
}

/// An explicit graph, whose nodes are terms.
struct Graph {
    Rows rows;
    std::uint64_t (*hash)(unsigned node) = usual_hash;
    /// Where memory runs out, after half of the row.
    unsigned node_without_memory = no_state;
};

/// A node of a graph. Each successor is reported as a new object, so that only equality can tell
/// that nodes are the same. Nodes of graphs with different labels differ.
class NodeTerm : public ProcessCompiler::Testing::FakeProcess {
  public:
    NodeTerm(Graph const& graph, unsigned node, std::string label = "",
             std::shared_ptr<Graph const> owned = nullptr)
        : FakeProcess(label + std::to_string(node)), m_graph(graph), m_node(node),
          m_label(std::move(label)), m_owned(std::move(owned)) {
        hash = graph.hash(node) + 2 * std::hash<std::string>()(m_label) * !m_label.empty();
    }

    bool visit_transitions(NamedProcessSource const&,
                           TransitionVisitor const& visitor) const override {
        Row const& row = m_graph.rows[m_node];
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (m_node == m_graph.node_without_memory && i == row.size() / 2) {
                throw std::bad_alloc();
            }
            if (!visitor(row[i].first, new NodeTerm(m_graph, row[i].second, m_label, m_owned))) {
                return false;
            }
        }
        return true;
    }

  private:
    Graph const& m_graph;
    unsigned m_node;
    std::string m_label;
    std::shared_ptr<Graph const> m_owned; // the graph, where nobody else holds it
};

/// The rows of the explored states.
inline Rows rows_of(LabelledTransitionSystem const& lts) {
    Rows rows(lts.explored_count());
    for (StateNumber state = 0; state < lts.explored_count(); ++state) {
        for (auto const [event, target] : lts.transitions(state)) {
            rows[state].emplace_back(event, target);
        }
    }
    return rows;
}

/// A system with these rows explored and `state_count` states in all.
inline LabelledTransitionSystem lts_of(Rows const& rows, StateNumber state_count) {
    LtsBuilder builder;
    for (Row const& row : rows) {
        for (auto const& [event, target] : row) {
            builder.add(event, target);
        }
        builder.end_row();
    }
    return builder.finish(state_count);
}

inline LabelledTransitionSystem lts_of(Rows const& rows) {
    return lts_of(rows, static_cast<StateNumber>(rows.size()));
}

} // namespace Calder::StateSpace::Testing
