#pragma once

#include "refinement/node_number.h"

#include <span>

namespace Calder::Refinement {

/// What a question makes of the concrete side: an automaton that follows its visible events, and
/// says what may not be.
class Observer {
  public:
    Observer() = default;
    virtual ~Observer() = default;
    Observer(Observer const&) = delete;
    Observer& operator=(Observer const&) = delete;

    /// Where it begins; `nothing_matters` when the question is answered already.
    virtual NodeNumber start() = 0;

    /// The node after an event other than tau, or what is not a node. Asked once for each node and
    /// event that come together. Nothing behind a tick is looked at, whatever is answered.
    virtual NodeNumber after(NodeNumber node, unsigned event) = 0;

    /// Of which offers `allows_offer` wants to be asked.
    enum class Offers { none, empty, all };
    [[nodiscard]] virtual Offers looks_at() const noexcept { return Offers::none; }
    /// Whether a state may perform exactly `events` after a trace of that node: ascending, tau and
    /// tick among them. Asked of every pair with such an offer.
    virtual bool allows_offer(NodeNumber node, std::span<unsigned const> events);
    /// The same, where that is known without looking at what was not looked at before; otherwise false. Several
    /// threads may ask at once.
    [[nodiscard]] virtual bool is_known_to_allow(NodeNumber node,
                                                 std::span<unsigned const> events) const;

    /// Whether no state may go round silently.
    [[nodiscard]] virtual bool forbids_loops() const noexcept { return false; }
};

inline bool Observer::allows_offer(NodeNumber node, std::span<unsigned const> events) {
    return is_known_to_allow(node, events);
}

inline bool Observer::is_known_to_allow(NodeNumber, std::span<unsigned const>) const {
    return true;
}

} // namespace Calder::Refinement
