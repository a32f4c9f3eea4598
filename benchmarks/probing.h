#pragma once

#include "core/large_array.h"
#include "state_space/mix.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace Calder::Benchmarks {

/// The least that a search must do for its states: an open-addressing set of as many keys of one word is
/// looked up as often as a search looks for states, and the keys come to it by and by, as states do. Nothing
/// is found out by the way, no number given, nothing grows: the set has its size from the beginning, and each
/// slot is asked for ahead of time.
class Probing {
  public:
    explicit Probing(std::uint64_t keys)
        : m_keys(keys), m_slot_bits(static_cast<unsigned>(std::bit_width(keys * 4 / 3))),
          m_slots(make_large_array<std::uint64_t>(std::size_t{1} << m_slot_bits)) {
        std::fill_n(m_slots.get(), std::size_t{1} << m_slot_bits, std::uint64_t{0});
    }

    /// How many keys are there in the end; `keys` unless this is wrong.
    std::uint64_t look_up(std::uint64_t lookups) {
        std::array<std::uint64_t, distance> ahead{};
        std::uint64_t added = 0;
        for (std::uint64_t number = 0; number < lookups + distance; ++number) {
            std::uint64_t& key = ahead[number % distance];
            if (number >= distance) {
                added += find_or_add(key);
            }
            key = key_of(number, lookups);
            __builtin_prefetch(&m_slots[slot_of(key)]);
        }
        return added;
    }

  private:
    static constexpr std::uint64_t distance = 16;

    /// Of those that were looked up so far any one, or the next one: each comes in its turn. Never 0.
    [[nodiscard]] std::uint64_t key_of(std::uint64_t number, std::uint64_t lookups) const noexcept {
        std::uint64_t const known = number * m_keys / lookups;
        bool const is_next = number == 0 || known != (number - 1) * m_keys / lookups;
        std::uint64_t const random = StateSpace::mix(number + 1) >> 32;
        return StateSpace::mix((is_next ? known : (random * (known + 1)) >> 32) + 1);
    }
    [[nodiscard]] std::size_t slot_of(std::uint64_t key) const noexcept {
        return static_cast<std::size_t>(key >> (64 - m_slot_bits));
    }
    unsigned find_or_add(std::uint64_t key) noexcept {
        std::size_t const mask = (std::size_t{1} << m_slot_bits) - 1;
        for (std::size_t slot = slot_of(key);; slot = (slot + 1) & mask) {
            if (m_slots[slot] == key) {
                return 0;
            }
            if (m_slots[slot] == 0) {
                m_slots[slot] = key;
                return 1;
            }
        }
    }

    std::uint64_t m_keys;
    unsigned m_slot_bits;
    LargeArray<std::uint64_t> m_slots;
};

} // namespace Calder::Benchmarks
