#pragma once

#include "state_space/machine/run/find_or_append.h"

#include <atomic>
#include <new>

namespace Calder::StateSpace {

/// Different keys of so many words each, numbered from 0 as they come. Several threads may look up and add at
/// once, where there is room; which of them come first then decides about the numbers.
///
/// The numbers stand in the buckets of VisitedStates: who adds a key locks its bucket, takes the next number and
/// writes the key before the bucket tells of it. 8 bytes a word, and 6 to 13 bytes a key.
class CALDER_STATE_SPACE_EXPORT NumberedKeys {
  public:
    using Number = StateNumber;

    explicit NumberedKeys(std::uint32_t width) : m_states(width) {}

    [[nodiscard]] Number size() const noexcept {
        return std::min(m_next.load(std::memory_order_relaxed), m_end);
    }
    /// The words of each key.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_states.width(); }
    [[nodiscard]] Word const* key(Number number) const noexcept { return m_states.words(number); }

    [[nodiscard]] std::uint64_t hash(Word const* key) const noexcept {
        return VisitedStates::hash(key, width());
    }
    void prefetch(std::uint64_t hash) const noexcept { m_states.prefetch_bucket(hash); }

    /// Throws std::bad_alloc where there is no room for a new key.
    Number find_or_add(Word const* key, std::uint64_t hash);

    /// Room for so many more keys, by one thread while no other does anything; the work is the team's, if there
    /// is one. Throws std::bad_alloc, as VisitedStates does.
    void make_room(std::uint64_t count, Team* team = nullptr) {
        if (m_end - size() < count) {
            grow(count, team);
        }
    }

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What more would be held at some moment while `additions` more keys are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    void grow(std::uint64_t count, Team* team);
    Number add(Word const* key) noexcept;

    VisitedStates m_states;                     // knows of its size only when it grows
    alignas(64) std::atomic<Number> m_next = 0; // may go beyond the end
    Number m_end = 0;                           // for which there is room
};

inline NumberedKeys::Number NumberedKeys::find_or_add(Word const* key, std::uint64_t hash) {
    Number const number =
        find_or_append(
            m_states.m_buckets.get(), m_states.m_bucket_count, hash,
            [&](Number known) { return m_states.is_state(known, key); },
            [](std::size_t /*bucket*/, unsigned /*place*/) {}, [&] { return add(key); })
            .first;
    if (number == no_state) {
        throw std::bad_alloc();
    }
    return number;
}

} // namespace Calder::StateSpace
