#pragma once

#include "state_space/machine/run/find_or_append.h"
#include "state_space/machine/run/prefetch.h"

#include <vector>

namespace Calder::StateSpace {

/// What several threads look up in a set of states, and add to it, at once, where nobody cares which number an
/// addition has. As SharedAdditions, but that an addition is at once where it stays: threads take numbers
/// some at a time, and in the end those that were not needed are given to the states that have the last ones.
class CALDER_STATE_SPACE_EXPORT UnorderedAdditions {
  public:
    UnorderedAdditions(VisitedStates& states, unsigned threads)
        : m_states(states), m_adders(threads) {}

    /// Room for `most` additions by all threads of the team together. Throws as VisitedStates::make_room does.
    void begin(std::size_t most, Team& team);

    /// @{
    /// As of VisitedStates.
    void prefetch_bucket(std::uint64_t hash) const noexcept { m_states.prefetch_bucket(hash); }
    StateNumber prefetch_state(std::uint64_t hash) noexcept {
        Bucket& bucket = m_buckets[VisitedStates::bucket_of(hash, m_bucket_count)];
        unsigned const matches = bucket.shared_head().matches(VisitedStates::tag_of(hash));
        if (matches == 0) { // it will be added
            prefetch_to_write(&bucket);
            return no_state;
        }
        StateNumber const likely = bucket.shared_number(VisitedStates::first_of_set(matches));
        __builtin_prefetch(m_states.words(likely));
        return likely;
    }
    [[nodiscard]] bool is_state(StateNumber state, Word const* other) const noexcept {
        return m_states.is_state(state, other);
    }
    /// @}

    /// The state of these words, and whether it is new: then this thread adds it. There must be room.
    std::pair<StateNumber, bool> find_or_add(Word const* words, std::uint64_t hash,
                                             unsigned thread) noexcept;

    /// When all is looked up. The additions stay, and their numbers follow those of the other states.
    void end() noexcept;
    /// Or they are taken back.
    void take_back() noexcept;

  private:
    static constexpr StateNumber numbers_at_a_time = 64;

    /// The numbers that a thread has for its next additions.
    struct alignas(64) Adder {
        StateNumber next = 0;
        StateNumber end = 0;
    };

    [[nodiscard]] Word* free_place(Adder& adder) noexcept;
    [[nodiscard]] bool is_unused(StateNumber number) const noexcept;
    void renumber(StateNumber from, StateNumber to) noexcept;

    VisitedStates& m_states;
    std::vector<Adder> m_adders; // by thread
    // Those of the states, closer at hand.
    Bucket* m_buckets = nullptr;
    std::size_t m_bucket_count = 0;
    StateNumber m_first = 0; // of all additions
    alignas(64) std::atomic<StateNumber> m_next = 0;
};

inline std::pair<StateNumber, bool>
UnorderedAdditions::find_or_add(Word const* words, std::uint64_t hash, unsigned thread) noexcept {
    Adder& adder = m_adders[thread];
    return find_or_append(
        m_buckets, m_bucket_count, hash,
        [&](StateNumber known) { return m_states.is_state(known, words); },
        [&](std::size_t /*bucket*/, unsigned /*place*/) {
            copy_words(words, free_place(adder), m_states.width());
        },
        [&] { return adder.next++; });
}

} // namespace Calder::StateSpace
