#pragma once

#include "refinement/divergence.h"
#include "refinement/node_number.h"
#include "refinement/numbered_states.h"

namespace Calder::Refinement {

/// A process with every choice that it makes by itself made beforehand: of the silent steps of a state
/// only the first is taken, until there is none; of the steps with one event only the first;
/// and where it can tick, it does nothing else. What is left is deterministic wherever it does not
/// diverge, and refines the process; so the process is deterministic exactly if it does not diverge and
/// refines what is left (Roscoe, Understanding Concurrent Systems, 2010, the chapter on determinism;
/// before that Lazić, A Semantic Study of Data Independence, 1999, checks the same by running a
/// process against itself).
///
/// A node is the state in which it settles after a trace.
class Determinisation {
  public:
    Determinisation(Side& side, SearchMonitor& monitor) : m_states(side, monitor) {}

    NodeNumber start() { return settled(NumberedStates::start); }
    /// `nothing_matters` behind a tick. Below a node that diverges it is that node: of the loops that
    /// decide the question then, a nearer one may stand behind other events.
    NodeNumber after(NodeNumber node, unsigned event);

    /// Going on silently it comes round; everything is allowed then, as the process diverges.
    [[nodiscard]] bool diverges(NodeNumber node) const { return m_nodes[node].diverges; }
    /// What the node's state accepts. Only of a node that does not diverge.
    [[nodiscard]] std::vector<unsigned> acceptance(NodeNumber node) const;

    struct Step {
        StateNumber source;
        unsigned event;
        StateNumber target;
    };
    /// Its only run of a trace, up to where it settles; and with a `last` event besides, unless that is
    /// no_event, up to behind that. It must be able to perform them without diverging.
    [[nodiscard]] std::vector<Step> run_of(std::span<unsigned const> trace, unsigned last);
    /// As wide as the process is by now.
    [[nodiscard]] std::vector<Word> words(StateNumber state) const { return m_states.words(state); }

  private:
    struct Node {
        StateNumber state;
        bool diverges;
    };

    /// Of a state on the way that is being gone, and of one not met yet.
    static constexpr NodeNumber on_the_way = nothing_matters;
    static constexpr NodeNumber unknown = forbidden;

    NodeNumber settled(StateNumber state);
    NodeNumber add_node(StateNumber state, bool diverges);
    [[nodiscard]] StateNumber silent_step(StateNumber state);

    NumberedStates m_states;
    std::vector<Node> m_nodes;
    std::vector<NodeNumber> m_numbers; // by state: where one settles from there
};

} // namespace Calder::Refinement
