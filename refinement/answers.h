#pragma once

#include "refinement/next_nodes.h"
#include "refinement/observer.h"

namespace Calder::Refinement {

/// What an observer has answered so far, and the observer, who is asked for what is not known yet.
class Answers {
  public:
    explicit Answers(Observer& observer) : m_observer(observer) {}

    [[nodiscard]] Observer const& observer() const noexcept { return m_observer; }
    [[nodiscard]] NextNodes const& next_nodes() const noexcept { return m_next_nodes; }

    /// Behind an event other than tau.
    [[nodiscard]] NodeNumber next_node(NodeNumber node, unsigned event);
    [[nodiscard]] bool allows_offer(NodeNumber node, std::span<unsigned const> events) {
        return m_observer.allows_offer(node, events);
    }

  private:
    Observer& m_observer;
    NextNodes m_next_nodes;
};

/// @{
/// How a search comes to answers: by asking, or by what is known alone, which several threads may do at once.
/// To the latter no offer is allowed of which nothing is known.
class Asking {
  public:
    explicit Asking(Answers& answers) : m_answers(answers) {}

    [[nodiscard]] NextNodes const& next_nodes() const noexcept { return m_answers.next_nodes(); }
    [[nodiscard]] NodeNumber next_node(NodeNumber node, unsigned event) const {
        return m_answers.next_node(node, event);
    }
    [[nodiscard]] bool allows_offer(NodeNumber node, std::span<unsigned const> events) const {
        return m_answers.allows_offer(node, events);
    }

  private:
    Answers& m_answers;
};

class Knowing {
  public:
    explicit Knowing(Answers const& answers) : m_answers(answers) {}

    [[nodiscard]] NextNodes const& next_nodes() const noexcept { return m_answers.next_nodes(); }
    [[nodiscard]] NodeNumber next_node(NodeNumber node, unsigned event) const noexcept {
        return next_nodes().find(node, event);
    }
    [[nodiscard]] bool allows_offer(NodeNumber node, std::span<unsigned const> events) const {
        return m_answers.observer().is_known_to_allow(node, events);
    }

  private:
    Answers const& m_answers;
};
/// @}

} // namespace Calder::Refinement
