#pragma once

#include "refinement/side.h"
#include "state_space/machine/run/visited_states.h"

#include <span>

namespace Calder::Refinement {

using StateSpace::Transition;

/// The states of a side that is looked at again and again: numbered in the order in which they are
/// reached, each one's transitions kept once they were asked for. 12 bytes a state and 8 a transition
/// besides the states themselves.
class NumberedStates {
  public:
    NumberedStates(Side& side, SearchMonitor& monitor);

    /// The number of the start.
    static constexpr StateNumber start = 0;

    [[nodiscard]] StateNumber size() const noexcept { return m_states.size(); }
    /// As wide as the side is by now.
    [[nodiscard]] std::vector<Word> words(StateNumber state) const;

    /// Each once, ascending by event and then by target. Good until the next row is asked for. Throws
    /// as Side::prepare does, and SearchEnded at the limit on states.
    [[nodiscard]] std::span<Transition const> row(StateNumber state);
    /// One that was asked for before. Several threads may ask at once.
    [[nodiscard]] std::span<Transition const> known_row(StateNumber state) const noexcept {
        return std::span(m_transitions).subspan(m_rows[state].begin, m_rows[state].length);
    }

    /// Of a row.
    [[nodiscard]] static std::span<Transition const> with_event(std::span<Transition const> row,
                                                                unsigned event) noexcept;
    [[nodiscard]] static bool can(std::span<Transition const> row, unsigned event) noexcept {
        return !with_event(row, event).empty();
    }

    [[nodiscard]] Side& side() const noexcept { return m_side; }

  private:
    struct Row {
        std::uint64_t begin = 0;
        std::uint32_t length = unknown;
    };
    static constexpr std::uint32_t unknown = 0xFFFFFFFF;

    void explore(StateNumber state);
    StateNumber add(Word const* words);

    Side& m_side;
    SearchMonitor& m_monitor;
    StateSpace::VisitedStates m_states;
    std::vector<Row> m_rows; // by state
    std::vector<Transition> m_transitions;
    Steps m_steps;
    Side::Scratch m_scratch;
    std::vector<Word> m_words; // of the state that is explored
};

} // namespace Calder::Refinement
