#pragma once

#include "state_space/labelled_transition_system.h"
#include "state_space/transition_set.h"

namespace Calder::StateSpace {

/// Makes a labelled transition system row by row, in the order of the states. A transition that is
/// added to a row twice is stored once, at the place where it was added first.
///
/// Allocates only when one of its arrays grows. When that throws std::bad_alloc, the row so far is
/// as it was before the call.
class LtsBuilder {
  public:
    /// Adds to the row of the next state. Constant time on average, however wide the row.
    void add(unsigned event, StateNumber target);

    /// The same for a transition that the row does not have, as the caller knows.
    void add_new(unsigned event, StateNumber target) {
        m_lts.m_transitions.push_back(Transition{event, target});
    }

    /// The row is whole: its state counts as explored, and the next row begins.
    void end_row();

    /// Forgets what was added since the last row ended.
    void drop_row();

    /// The system of the rows that have ended, with this number of states, which is above every
    /// target and not below the number of rows. The builder is then as new.
    [[nodiscard]] LabelledTransitionSystem finish(StateNumber state_count);

    /// Rows that have ended.
    [[nodiscard]] StateNumber explored_count() const noexcept { return m_lts.explored_count(); }
    /// The transitions of the row in progress included.
    [[nodiscard]] std::uint64_t transition_count() const noexcept {
        return m_lts.transition_count();
    }

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What the arrays could allocate for a moment, besides what they have, while `additions` more
    /// transitions are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    [[nodiscard]] bool is_in_row(Transition transition);

    LabelledTransitionSystem m_lts;
    std::size_t m_row_begin = 0;
    bool m_row_is_wide = false;
    TransitionSet m_wide_row; // what was added to the row in progress, once it is wide
};

} // namespace Calder::StateSpace
