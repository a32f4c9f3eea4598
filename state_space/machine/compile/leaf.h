#pragma once

#include "core/bit_set.h"
#include "process_compiler/process.h"
#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"

#include <span>
#include <vector>

namespace Calder::StateSpace {

/// A leaf of a machine: an explicit transition system with its successors by state and event.
///
/// Of a small system, an event by which no state has two successors has a dense table. Otherwise
/// the event is looked for in the state's row, which is sorted.
class CALDER_STATE_SPACE_EXPORT Leaf {
  public:
    /// One event of the alphabet.
    struct Event {
        /// Its number in the session.
        unsigned event = 0;
        /// No state has two successors by this event.
        bool is_deterministic = true;
        /// Some state is its own successor by this event.
        bool has_loop = false;
        /// By state, of a deterministic event in a small system; otherwise null. no_state where the
        /// event is not possible.
        StateNumber const* only_successor = nullptr;
    };

    /// A system is small where its states times its events are no more than this: 64 MiB of tables.
    static constexpr std::uint64_t most_dense_entries = std::uint64_t{1} << 24;

    /// Of the term and what it can do, explored completely. Copies what it needs of the system.
    Leaf(ProcessCompiler::ProcessPointer explored, LabelledTransitionSystem const& system);
    Leaf(Leaf const&) = delete;
    Leaf& operator=(Leaf const&) = delete;

    /// What was explored; its start is state 0.
    [[nodiscard]] ProcessCompiler::ProcessPointer const& term() const noexcept { return m_term; }
    /// @{
    /// Those of the transition system.
    [[nodiscard]] StateNumber state_count() const noexcept { return m_state_count; }
    [[nodiscard]] std::uint64_t transition_count() const noexcept { return m_successors.size(); }
    /// @}
    /// What some state can do, ascending.
    [[nodiscard]] std::vector<Event> const& events() const noexcept { return m_events; }
    /// The same as a set, which is made anew each time.
    [[nodiscard]] BitSet alphabet() const;

    /// Where an event of the alphabet stands in `events`.
    [[nodiscard]] std::uint32_t index_of(unsigned event) const noexcept;

    /// The successors of `state` by the event of that index, in the order of the transition system.
    [[nodiscard]] std::span<StateNumber const> successors(StateNumber state,
                                                          std::uint32_t event_index) const noexcept;

  private:
    void sort_rows(LabelledTransitionSystem const& system);
    void describe_events();
    void make_dense_tables();

    ProcessCompiler::ProcessPointer m_term;
    StateNumber m_state_count;
    std::vector<Event> m_events;
    // Row after row, each sorted by event.
    std::vector<std::uint64_t> m_row_begins; // by state, and where the last row ends
    std::vector<StateNumber> m_successors;
    std::vector<std::uint32_t> m_event_indices; // of each successor
    // By event, then by state.
    std::vector<StateNumber> m_only_successors;
};

} // namespace Calder::StateSpace
