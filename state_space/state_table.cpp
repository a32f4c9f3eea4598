#include "state_space/state_table.h"

#include "process_compiler/shared_comparison.h"
#include "state_space/memory.h"
#include "state_space/mix.h"

#include <algorithm>
#include <utility>

namespace Calder::StateSpace {

using ProcessCompiler::Process;
using ProcessCompiler::ProcessPointer;

namespace {

constexpr unsigned first_slot_bits = 8;

/// Most terms take two cache lines.
void prefetch_object(void const* object) {
    __builtin_prefetch(object);
    __builtin_prefetch(static_cast<char const*>(object) + 64);
}

bool are_equal(ProcessPointer const& known, ProcessPointer const& term, std::uint64_t hash) {
    if (known == term) {
        return true;
    }
    if (hash_of(known) != hash) {
        return false;
    }
    ProcessCompiler::SharedComparison const shared;
    return *known == *term;
}

} // namespace

StateNumber StateTable::find_or_add(ProcessPointer const& term, StateNumber max_states) {
    if (must_grow_for(m_terms.size() + 1)) {
        grow();
    }
    std::uint64_t const hash = hash_of(term);
    return find_or_add_in_slot(term, hash, tag_of(hash), max_states);
}

StateNumber StateTable::find_or_add(ProcessPointer const& term, Sought const& sought,
                                    StateNumber max_states) {
    if (sought.candidate != no_state && are_equal(m_terms[sought.candidate], term, sought.hash)) {
        return sought.candidate;
    }
    return find_or_add_in_slot(term, sought.hash, sought.tag, max_states);
}

StateNumber StateTable::find_or_add_in_slot(ProcessPointer const& term, std::uint64_t hash,
                                            std::uint32_t tag, StateNumber max_states) {
    if (must_grow_for(m_terms.size() + 1)) {
        grow();
    }
    Slot& slot = m_slots[slot_of(term, hash, tag)];
    if (slot.state != no_state) {
        return slot.state;
    }
    if (size() >= max_states) {
        return no_state;
    }
    m_terms.push_back(term);
    slot = Slot{tag, size() - 1};
    return size() - 1;
}

void StateTable::find_candidate(Sought& sought) const noexcept {
    if (m_slots.empty()) {
        return;
    }
    Slot const* const slots = m_slots.data();
    std::size_t const mask = m_slots.size() - 1;
    std::size_t slot = first_slot(sought.tag);
    while (slots[slot].state != no_state && slots[slot].tag != sought.tag) {
        slot = (slot + 1) & mask;
    }
    sought.candidate = slots[slot].state;
    if (sought.candidate != no_state) {
        __builtin_prefetch(&m_terms[sought.candidate]);
    }
}

void StateTable::prefetch_term(StateNumber candidate) const noexcept {
    if (candidate != no_state) {
        prefetch_object(m_terms[candidate].get());
    }
}

/// A candidate with another code is none.
void StateTable::find_argument(Sought& sought, Process const& term) const {
    if (sought.candidate == no_state) {
        return;
    }
    Process const& known = *m_terms[sought.candidate];
    if (known.kept_hash() != sought.hash) {
        sought.candidate = no_state;
        return;
    }
    unsigned const count = std::min(known.argument_count(), term.argument_count());
    for (unsigned index = 0; index < count; ++index) {
        Process const* const argument = known.argument(index).get();
        if (argument != term.argument(index).get()) {
            prefetch_object(argument);
            sought.argument = argument;
            return;
        }
    }
}

void StateTable::prefetch_arguments_of(Process const* term) {
    if (term != nullptr && term->argument_count() > 0) {
        __builtin_prefetch(&term->argument(0));
    }
}

StateNumber StateTable::find(ProcessPointer const& term) const {
    if (m_slots.empty()) {
        return no_state;
    }
    std::uint64_t const hash = hash_of(term);
    return m_slots[slot_of(term, hash, tag_of(hash))].state;
}

std::uint64_t StateTable::memory_bytes() const noexcept {
    return allocated_bytes(m_slots) + allocated_bytes(m_terms);
}

std::uint64_t StateTable::growth_bytes(std::uint64_t additions) const noexcept {
    return StateSpace::growth_bytes(m_terms, additions) +
           (must_grow_for(m_terms.size() + additions) ? allocated_bytes(m_slots) * 2 : 0);
}

/// Two thirds of the slots at most are taken: five probes on average for a new term, within one
/// cache line or two.
bool StateTable::must_grow_for(std::uint64_t states) const noexcept {
    return states * 3 > std::uint64_t{m_slots.size()} * 2;
}

/// The slot that has the term, or the free one that it belongs into.
std::size_t StateTable::slot_of(ProcessPointer const& term, std::uint64_t hash,
                                std::uint32_t tag) const {
    std::size_t slot = first_slot(tag);
    for (; m_slots[slot].state != no_state; slot = (slot + 1) & (m_slots.size() - 1)) {
        if (m_slots[slot].tag == tag && are_equal(m_terms[m_slots[slot].state], term, hash)) {
            break;
        }
    }
    return slot;
}

void StateTable::grow() {
    unsigned const bits = m_slots.empty() ? first_slot_bits : m_slot_bits + 1;
    LargeVector<Slot> const old =
        std::exchange(m_slots, LargeVector<Slot>(std::size_t{1} << bits, Slot{0, no_state}));
    m_slot_bits = bits;
    for (Slot const& taken : old) {
        if (taken.state != no_state) {
            std::size_t slot = first_slot(taken.tag);
            while (m_slots[slot].state != no_state) {
                slot = (slot + 1) & (m_slots.size() - 1);
            }
            m_slots[slot] = taken;
        }
    }
}

} // namespace Calder::StateSpace
