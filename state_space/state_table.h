#pragma once

#include "core/large_array.h"
#include "process_compiler/process.h"
#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"
#include "state_space/mix.h"

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

    /// A term that is looked for while others are, too.
    struct Sought {
        /// The term's code.
        std::uint64_t hash = 0;
        /// In which slots it may be.
        std::uint32_t tag = 0;
        /// The state that may have it, as far as is known.
        StateNumber candidate = no_state;
        /// The first of the candidate's arguments that is not the same object as the term's; null
        /// when there is none.
        ProcessCompiler::Process const* argument = nullptr;
    };

    /// @{
    /// Looking for many terms at once: each step is done for all of them before the next one, so
    /// that what a search reads next is on its way into the cache while the others are looked for.
    [[nodiscard]] Sought seek(std::uint64_t hash) const noexcept {
        Sought sought;
        sought.hash = hash;
        sought.tag = tag_of(hash);
        if (!m_slots.empty()) {
            __builtin_prefetch(&m_slots[first_slot(sought.tag)]);
        }
        return sought;
    }
    void find_candidate(Sought& sought) const noexcept;
    void prefetch_term(StateNumber candidate) const noexcept;
    void find_argument(Sought& sought, ProcessCompiler::Process const& term) const;
    static void prefetch_arguments_of(ProcessCompiler::Process const* term);
    /// As find_or_add of the term alone. Terms may have been added since the first step.
    StateNumber find_or_add(ProcessCompiler::ProcessPointer const& term, Sought const& sought,
                            StateNumber max_states);
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
    [[nodiscard]] static std::uint32_t tag_of(std::uint64_t hash) noexcept {
        return static_cast<std::uint32_t>(mix(hash) >> tag_bits);
    }
    [[nodiscard]] std::size_t first_slot(std::uint32_t tag) const noexcept {
        return m_slot_bits <= tag_bits ? tag >> (tag_bits - m_slot_bits)
                                       : std::size_t{tag} << (m_slot_bits - tag_bits);
    }
    StateNumber find_or_add_in_slot(ProcessCompiler::ProcessPointer const& term, std::uint64_t hash,
                                    std::uint32_t tag, StateNumber max_states);
    [[nodiscard]] std::size_t slot_of(ProcessCompiler::ProcessPointer const& term,
                                      std::uint64_t hash, std::uint32_t tag) const;
    void grow();

    static constexpr unsigned tag_bits = 32;

    LargeVector<Slot> m_slots; // 2^m_slot_bits of them, or none
    unsigned m_slot_bits = 0;
    LargeVector<ProcessCompiler::ProcessPointer> m_terms; // by state
};

} // namespace Calder::StateSpace
