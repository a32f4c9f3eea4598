#pragma once

#include "refinement/divergence.h"
#include "refinement/minimal_sets.h"
#include "refinement/node_number.h"

#include <optional>
#include <unordered_map>

namespace Calder::Refinement {

/// The abstract side made deterministic, node by node as it is asked for (Roscoe, Model-checking
/// CSP, 1994: normalisation). A node is all states in which the side can be after a trace, silent
/// steps included; equal sets are one node. 4 bytes for each state of each node, and some 100 a node.
class NormalForm {
  public:
    NormalForm(Side& side, SearchMonitor& monitor);

    NodeNumber start();
    /// `forbidden` where no state of the node can perform the event, `nothing_matters` after a tick.
    NodeNumber after(NodeNumber node, unsigned event);

    /// Ascending.
    [[nodiscard]] std::vector<StateNumber> const& members(NodeNumber node) const {
        return m_nodes[node].entry->first;
    }
    [[nodiscard]] bool diverges(NodeNumber node);
    /// The minimal ones of what its members accept; see `acceptance_of`.
    [[nodiscard]] MinimalSets::Family acceptances(NodeNumber node);
    /// Nothing before the first use.
    [[nodiscard]] std::optional<MinimalSets::Family>
    known_acceptances(NodeNumber node) const noexcept {
        return node < m_acceptances.size() && m_acceptances[node] != unknown
                   ? std::optional(m_acceptances[node])
                   : std::nullopt;
    }
    [[nodiscard]] MinimalSets const& acceptance_sets() const noexcept { return m_sets; }
    /// What can come next, ascending; no tau among it.
    [[nodiscard]] Events events(NodeNumber node);

  private:
    using Members = std::vector<StateNumber>;
    struct HashMembers {
        std::size_t operator()(Members const& members) const noexcept;
    };
    using Numbers = std::unordered_map<Members, NodeNumber, HashMembers>;

    struct Node {
        Numbers::value_type const* entry;
    };

    NodeNumber node_of(Members reached);
    void close(Members& members);

    NumberedStates m_states;
    SearchMonitor& m_monitor;
    Divergence m_divergence{m_states, m_monitor};
    MinimalSets m_sets;
    Numbers m_numbers;
    std::vector<Node> m_nodes; // by number
    static constexpr std::uint32_t unknown = 0xFFFFFFFF;
    std::vector<MinimalSets::Family> m_acceptances; // by node, `unknown` before the first use
    std::vector<std::uint32_t> m_stamps;            // by state: the closure it was last added in
    std::uint32_t m_stamp = 0;
};

} // namespace Calder::Refinement
