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

    /// Forgets all rows, and keeps the storage.
    void clear() noexcept {
        m_lts.m_transitions.shrink(0);
        m_lts.m_row_ends.shrink(0);
        m_row_begin = 0;
        m_row_is_wide = false;
    }

    /// Where rows may be copied to.
    struct Room {
        std::size_t first_row = 0;
        std::uint64_t first_transition = 0;
    };
    /// Room for so many rows with so many transitions together, behind those that have ended. All of it
    /// must be copied to before anything else is asked. Throws std::bad_alloc, and is then as before.
    Room make_room(std::size_t rows, std::uint64_t transitions);
    /// Copies all rows that have ended in another builder; a target becomes `number_of(target)`. May be
    /// called by several threads at once, for rooms apart from each other.
    template <typename NumberOf>
    void copy(LtsBuilder const& from, Room room, NumberOf&& number_of) noexcept {
        std::size_t row = room.first_row;
        for (std::uint64_t const end : from.m_lts.m_row_ends) {
            m_lts.m_row_ends[row++] = room.first_transition + end;
        }
        std::uint64_t place = room.first_transition;
        for (Transition const& each : from.m_lts.m_transitions) {
            m_lts.m_transitions[place++] = {each.event, number_of(each.target)};
        }
    }

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
    /// What more the arrays could occupy at some moment while `additions` more transitions are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    [[nodiscard]] bool is_in_row(Transition transition);

    LabelledTransitionSystem m_lts;
    std::size_t m_row_begin = 0;
    bool m_row_is_wide = false;
    TransitionSet m_wide_row; // what was added to the row in progress, once it is wide
};

} // namespace Calder::StateSpace
