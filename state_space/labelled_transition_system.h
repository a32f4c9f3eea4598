#pragma once

#include "core/growing_array.h"
#include "state_space/export.h"

#include <cstdint>
#include <span>

namespace Calder::StateSpace {

/// Counts from 0, which is the start; searches number breadth-first.
using StateNumber = std::uint32_t;

/// The one number that no state has, so there are at most this many states.
constexpr StateNumber no_state = 0xFFFFFFFF;

/// One entry of a state's row: the state itself is told by the row.
struct Transition {
    /// Member by member.
    bool operator==(Transition const&) const = default;

    /// Its number in the session.
    unsigned event;
    /// Where it leads.
    StateNumber target;
};

/// An explicit labelled transition system: states 0, 1, …, where 0 is the start, and for each
/// explored state the set of its transitions, in the order of their first reports.
///
/// Kept in compressed rows: 8 bytes a transition and 8 bytes a state. An LtsBuilder makes it; after
/// that it does not change.
class CALDER_STATE_SPACE_EXPORT LabelledTransitionSystem {
  public:
    /// Those that were only reached are counted, too. At most `no_state`.
    [[nodiscard]] StateNumber state_count() const noexcept { return m_state_count; }
    /// Of all explored states.
    [[nodiscard]] std::uint64_t transition_count() const noexcept { return m_transitions.size(); }

    /// How many states have their transitions here; they are the first ones. Less than
    /// `state_count` when an exploration ended early.
    [[nodiscard]] StateNumber explored_count() const noexcept {
        return static_cast<StateNumber>(m_row_ends.size());
    }

    /// None for a state that was not explored. Constant time.
    [[nodiscard]] std::span<Transition const> transitions(StateNumber state) const noexcept {
        if (state >= explored_count()) {
            return {};
        }
        std::uint64_t const begin = state == 0 ? 0 : m_row_ends[state - 1];
        return {m_transitions.data() + begin, m_row_ends[state] - begin};
    }

    /// What the arrays occupy.
    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;

  private:
    friend class LtsBuilder;

    StateNumber m_state_count = 0;
    GrowingArray<Transition> m_transitions; // row after row
    GrowingArray<std::uint64_t> m_row_ends; // by state: where its row ends and the next one begins
};

} // namespace Calder::StateSpace
