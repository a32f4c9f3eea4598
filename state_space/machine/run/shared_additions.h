#pragma once

#include "state_space/machine/run/find_or_append.h"
#include "state_space/machine/run/prefetch.h"

namespace Calder::StateSpace {

/// What several threads look up in a set of states, and add to it, at once. In between the set is its
/// owner's, as ever.
///
/// An addition is a record with the words of the state, the place where it was met first, and where it
/// stands in the table: there under a number for the time being, which is above those of all states that
/// have one. Places ascend as one thread alone would meet the states; whichever thread meets an addition at
/// a lower place notes that. When all is looked up, the least places tell the order of the additions, and
/// `give_number` moves them one by one to where the set has them; it can be called for different ones at once.
class CALDER_STATE_SPACE_EXPORT SharedAdditions {
  public:
    using Place = std::uint64_t;

    /// The records that a thread has for its next additions, apart from those of others.
    struct alignas(64) Adder {
        std::size_t next = 0;
        std::size_t end = 0;
    };

    struct Found {
        StateNumber state;
        /// It is an addition, which nobody has met at a lower place so far.
        bool is_first;
    };

    explicit SharedAdditions(VisitedStates& states) : m_states(states) {}

    /// Room for `most` additions by all threads of the team together, each of which has a new adder. Throws
    /// as VisitedStates::make_room does.
    void begin(std::size_t most, Team& team);

    void prefetch_bucket(std::uint64_t hash) const noexcept {
        __builtin_prefetch(&m_buckets[bucket_of(hash)]);
    }
    /// As of VisitedStates.
    StateNumber prefetch_state(std::uint64_t hash) noexcept {
        Bucket& bucket = m_buckets[bucket_of(hash)];
        unsigned const matches = bucket.shared_head().matches(VisitedStates::tag_of(hash));
        if (matches == 0) { // it will be added
            prefetch_to_write(&bucket);
            return no_state;
        }
        StateNumber const likely = bucket.shared_number(VisitedStates::first_of_set(matches));
        __builtin_prefetch(words(likely));
        return likely;
    }
    [[nodiscard]] bool is_state(StateNumber state, Word const* other) const noexcept {
        return are_equal_words(words(state), other, m_width);
    }

    /// The state, which is met at this place.
    Found meet(StateNumber state, Place place) noexcept {
        return {state, state >= m_first && note(state, place)};
    }
    /// The same for the state of these words, which is added when it is new. There must be room.
    Found find_or_add(Word const* words, std::uint64_t hash, Place place, Adder& adder) noexcept;

    /// Whether an addition, which has no number yet, was met first at this place.
    [[nodiscard]] bool is_met_first(StateNumber state, Place place) const noexcept {
        return record(state)[order_word] == place;
    }
    /// For as many states as there will be. Where it throws std::bad_alloc, nothing has changed.
    void make_room_for_words(std::uint64_t states) { m_states.make_blocks(states); }
    /// Asks for the memory that `give_number` will write to.
    void prefetch_entry(StateNumber addition) const noexcept {
        prefetch_to_write(&bucket_of_addition(addition));
    }
    void give_number(StateNumber addition, StateNumber number) noexcept;
    /// That an addition was given; of any other state, its own.
    [[nodiscard]] StateNumber number(StateNumber state) const noexcept {
        return state < m_first ? state : static_cast<StateNumber>(record(state)[order_word]);
    }
    /// All `count` additions have numbers.
    void end(StateNumber count) noexcept { m_states.m_size += count; }

    /// Takes an addition out of the set. All of them must be, or none.
    void take_back(StateNumber addition) noexcept;

    /// No more states can there be at the end of a round than these: records have numbers, too.
    [[nodiscard]] static constexpr StateNumber most_states(unsigned adders) noexcept {
        return no_state - adders * records_at_a_time;
    }
    /// What the records of so many additions take.
    [[nodiscard]] static constexpr std::uint64_t bytes_of(std::uint64_t additions,
                                                          std::uint32_t width) noexcept {
        return additions * (head_words + width + 1) * sizeof(Word);
    }

  private:
    // Of a record; then come the state's words.
    static constexpr std::size_t order_word = 0; // the least place, and at the end the number
    static constexpr std::size_t head_words = 1;

    static constexpr unsigned entry_bits = 4;
    static constexpr unsigned records_at_a_time = 64;
    static constexpr std::size_t record_distance = 8; // for which memory is asked for ahead

    [[nodiscard]] Word* record(StateNumber addition) const noexcept {
        return &m_records[std::size_t{addition - m_first} * m_record_words];
    }
    [[nodiscard]] Word const* words(StateNumber state) const noexcept {
        return state < m_first ? m_states.words(state) : record(state) + head_words;
    }
    [[nodiscard]] Word& entry(StateNumber addition) const noexcept {
        return m_entries[addition - m_first];
    }
    [[nodiscard]] Bucket& bucket_of_addition(StateNumber addition) const noexcept {
        return m_buckets[entry(addition) >> entry_bits];
    }
    [[nodiscard]] bool note(StateNumber addition, Place place) const noexcept;
    StateNumber free_record(Adder& adder) noexcept;

    [[nodiscard]] std::size_t bucket_of(std::uint64_t hash) const noexcept {
        return VisitedStates::bucket_of(hash, m_bucket_count);
    }

    VisitedStates& m_states;
    // Those of the states, closer at hand: who looks up reads them again after every bucket.
    Bucket* m_buckets = nullptr;
    std::size_t m_bucket_count = 0;
    std::uint32_t m_width = 1;
    StateNumber m_first = 0; // the number of the first record
    std::size_t m_record_words = 0;
    std::size_t m_capacity = 0;
    LargeArray<Word> m_records;
    /// By addition, the bucket's number and the place there: apart, as who looks up has no use for them, and
    /// more records stay in his cache.
    LargeArray<Word> m_entries;
    alignas(64) std::atomic<std::size_t> m_taken = 0; // records
};

inline SharedAdditions::Found SharedAdditions::find_or_add(Word const* words, std::uint64_t hash,
                                                           Place place, Adder& adder) noexcept {
    auto const [state, is_new] = find_or_append(
        m_buckets, m_bucket_count, hash, [&](StateNumber known) { return is_state(known, words); },
        [&](std::size_t bucket, unsigned in_bucket) {
            StateNumber const addition = free_record(adder);
            Word* const own = record(addition);
            own[order_word] = place;
            entry(addition) = Word{bucket} << entry_bits | in_bucket;
            copy_words(words, own + head_words, m_width);
        },
        [&] { return m_first + static_cast<StateNumber>(adder.next++); });
    return is_new ? Found{state, true} : meet(state, place);
}

} // namespace Calder::StateSpace
