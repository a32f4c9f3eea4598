#pragma once

#include "core/large_array.h"
#include "process_compiler/process.h"
#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"

namespace Calder::StateSpace {

/// The states of an exploration: terms, numbered in the order in which they were added. Equal terms
/// are one state.
///
/// An open-addressing table with linear probing over slots of 8 bytes: 32 bits of the mixed hash
/// code, and a state number. The top of those 32 bits is also the slot to begin at, so growing
/// reads the slots from first to last and touches no term. Terms are asked for equality only when
/// all 64 bits of their codes agree. 20 to 32 bytes a state, besides the terms.
class CALDER_STATE_SPACE_EXPORT StateTable {
  public:
    [[nodiscard]] StateNumber size() const noexcept {
        return static_cast<StateNumber>(m_terms.size());
    }

    /// The state of the term, which is added when it is new; no_state when it is new and there are
    /// `max_states` already. On std::bad_alloc the table is as before.
    StateNumber find_or_add(ProcessCompiler::ProcessPointer const& term,
                            StateNumber max_states = no_state);

    /// @{
    /// Before a term is looked for, in order, while others are, too: bring into the cache what
    /// the search will read. Each takes what the one before brought. `hash` is the term's code.
    void prefetch(std::uint64_t hash) const noexcept;
    /// Returns the state that may have the term; no_state where there is none.
    [[nodiscard]] StateNumber prefetch_candidate(std::uint64_t hash) const noexcept;
    void prefetch_term(StateNumber candidate) const noexcept;
    void prefetch_arguments(StateNumber candidate) const;
    /// @}

    /// The state of the term; no_state when there is none.
    [[nodiscard]] StateNumber find(ProcessCompiler::ProcessPointer const& term) const;

    /// The reference is good until a term is added, the term as long as the table.
    [[nodiscard]] ProcessCompiler::ProcessPointer const& term(StateNumber state) const {
        return m_terms[state];
    }

    /// What the arrays have allocated; the terms themselves are not counted.
    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What they could allocate for a moment, besides that, while `additions` more terms are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    struct Slot {
        std::uint32_t tag;
        StateNumber state;
    };

    [[nodiscard]] bool must_grow_for(std::uint64_t states) const noexcept;
    [[nodiscard]] std::size_t first_slot(std::uint32_t tag) const noexcept;
    [[nodiscard]] std::size_t slot_of(ProcessCompiler::ProcessPointer const& term,
                                      std::uint64_t hash, std::uint32_t tag) const;
    void grow();

    LargeVector<Slot> m_slots; // 2^m_slot_bits of them, or none
    unsigned m_slot_bits = 0;
    LargeVector<ProcessCompiler::ProcessPointer> m_terms; // by state
};

} // namespace Calder::StateSpace
