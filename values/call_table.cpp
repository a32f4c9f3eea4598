#include "values/call_table.h"

#include "core/hash_combine.h"

#include <climits>

#include <algorithm>

namespace Calder::Values {

namespace {

constexpr unsigned free_slot = UINT_MAX;
constexpr std::size_t first_table_size = 64;

std::uint64_t hash_of(unsigned definition, std::span<Value const> arguments) {
    std::uint64_t hash = definition;
    for (Value const argument : arguments) {
        hash = hash_combine(hash, argument.word());
    }
    hash = hash_combine(hash, arguments.size());
    return hash ^ hash >> 32; // the code is even
}

unsigned upper_half(std::uint64_t hash) {
    return static_cast<unsigned>(hash >> 32);
}

} // namespace

CallTable::Entry CallTable::insert(unsigned definition, std::span<Value const> arguments) {
    if (m_calls.size() * 2 >= m_slots.size()) {
        grow();
    }
    std::uint64_t const hash = hash_of(definition, arguments);
    Slot& slot = m_slots[slot_of(hash, definition, arguments)];
    if (slot.number != free_slot) {
        return {slot.number, false};
    }
    // The slot last: it must not be taken where memory runs out.
    m_calls.push_back(
        {m_arena.copy(arguments), definition, static_cast<unsigned>(arguments.size())});
    slot = {static_cast<unsigned>(m_calls.size() - 1), upper_half(hash)};
    return {slot.number, true};
}

std::optional<unsigned> CallTable::find(unsigned definition,
                                        std::span<Value const> arguments) const {
    if (m_slots.empty()) {
        return std::nullopt;
    }
    Slot const& slot = m_slots[slot_of(hash_of(definition, arguments), definition, arguments)];
    return slot.number == free_slot ? std::nullopt : std::optional(slot.number);
}

std::size_t CallTable::slot_of(std::uint64_t hash, unsigned definition,
                               std::span<Value const> arguments) const {
    std::size_t const mask = m_slots.size() - 1;
    std::size_t index = hash & mask;
    for (; m_slots[index].number != free_slot; index = (index + 1) & mask) {
        unsigned const number = m_slots[index].number;
        if (m_slots[index].hash == upper_half(hash) && m_calls[number].definition == definition &&
            std::ranges::equal(this->arguments(number), arguments)) {
            break;
        }
    }
    return index;
}

void CallTable::grow() {
    std::vector<Slot> slots(std::max(m_slots.size() * 2, first_table_size), {free_slot, 0});
    std::size_t const mask = slots.size() - 1;
    for (unsigned number = 0; number < m_calls.size(); ++number) {
        std::uint64_t const hash = hash_of(m_calls[number].definition, arguments(number));
        std::size_t index = hash & mask;
        while (slots[index].number != free_slot) {
            index = (index + 1) & mask;
        }
        slots[index] = {number, upper_half(hash)};
    }
    m_slots = std::move(slots);
}

} // namespace Calder::Values
