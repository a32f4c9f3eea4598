#pragma once

#include "state_space/lts_builder.h"
#include "state_space/machine/run/steps.h"

namespace Calder::StateSpace {

/// The transitions of states, row after row: kept, or only counted. A step that may be repeated counts once
/// for its row.
class FoundRows {
  public:
    explicit FoundRows(bool keep) : m_keeps(keep) {}

    [[nodiscard]] bool keeps() const noexcept { return m_keeps; }
    /// Of rows that have ended.
    [[nodiscard]] std::uint64_t transition_count() const noexcept { return m_transitions; }

    /// Adds the row of the steps from `first` up to `last`, `target_of(step)` being where each leads. False
    /// when it says no_state; the row is then no more than begun.
    template <typename TargetOf>
    bool add_row(Steps const& steps, std::size_t first, std::size_t last, TargetOf&& target_of) {
        std::uint64_t never_repeated = 0;
        for (std::size_t step = first; step < last; ++step) {
            StateNumber const target = target_of(step);
            if (target == no_state) {
                return false;
            }
            if (steps.can_repeat(step)) {
                m_builder.add(steps.event(step), target);
            } else if (m_keeps) {
                m_builder.add_new(steps.event(step), target);
            } else {
                ++never_repeated;
            }
        }
        if (m_keeps) {
            m_builder.end_row();
            m_transitions = m_builder.transition_count();
        } else {
            m_transitions += never_repeated + m_builder.transition_count();
            m_builder.drop_row();
        }
        return true;
    }

    /// Forgets all rows, and keeps the storage.
    void clear() noexcept {
        m_transitions = 0;
        m_builder.clear();
    }

    /// The rows of all, if they are kept; then there are none here.
    [[nodiscard]] LabelledTransitionSystem finish(StateNumber state_count) {
        return m_keeps ? m_builder.finish(state_count) : LabelledTransitionSystem();
    }

    /// Adds so many to those that are counted. Where they are kept, room for them, behind the rows there are:
    /// they follow by `copy`, each row of the room. Throws std::bad_alloc, and is then as before.
    LtsBuilder::Room make_room(std::size_t rows, std::uint64_t transitions) {
        LtsBuilder::Room const room =
            m_keeps ? m_builder.make_room(rows, transitions) : LtsBuilder::Room{};
        m_transitions += transitions;
        return room;
    }
    /// Moves rows to a room, their targets being `number_of` of what they are; for different rooms by several
    /// threads at once.
    template <typename NumberOf>
    void copy(FoundRows const& rows, LtsBuilder::Room room, NumberOf&& number_of) noexcept {
        m_builder.copy(rows.m_builder, room, number_of);
    }

    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        return m_builder.growth_bytes(additions);
    }

  private:
    bool m_keeps;
    std::uint64_t m_transitions = 0;
    LtsBuilder m_builder; // when transitions are not kept, only of steps that may be repeated
};

} // namespace Calder::StateSpace
