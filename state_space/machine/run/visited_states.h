#pragma once

#include "core/large_array.h"
#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"
#include "state_space/machine/run/bucket.h"
#include "state_space/machine/run/layout.h"
#include "state_space/mix.h"

#include <array>
#include <bit>
#include <vector>

namespace Calder::StateSpace {

class Team;

/// The states of a machine that were reached, numbered in the order in which they were added.
///
/// The words of the states stand in blocks that never move, each as large as all before it. Beside
/// them is an open-addressing table of buckets of one cache line: 12 numbers, and of each a byte of
/// its state's hash, so that a search touches the words of few states other than the one it finds.
/// A full bucket goes on in the next one. The table grows by being made anew from the states, the
/// old one being given back first, so that the two never stand there together. 8 bytes a word, and
/// 6 to 13 bytes a state.
///
/// A search has three stages, of which the first two only ask for memory ahead of time:
/// `prefetch_bucket`, `prefetch_state`, `find_or_add`.
///
/// It belongs to one thread, but for what NumberedKeys, SharedAdditions and UnorderedAdditions do.
class CALDER_STATE_SPACE_EXPORT VisitedStates {
  public:
    explicit VisitedStates(std::uint32_t width) : m_width(width) {}

    [[nodiscard]] StateNumber size() const noexcept { return m_size; }
    /// The words of each state.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_width; }

    [[nodiscard]] Word const* words(StateNumber state) const noexcept { return place_of(state); }

    /// Word by word a multiplication, its high half brought down before the next, and at the end a
    /// thorough mixing: a bucket is taken from the upper bits, a tag from the lower ones.
    [[nodiscard]] static std::uint64_t hash(Word const* words, std::uint32_t width) noexcept {
        std::uint64_t folded = words[0];
        for (std::uint32_t i = 1; i < width; ++i) {
            folded = ((folded ^ (folded >> 32)) * 0x9e3779b97f4a7c15) ^ words[i];
        }
        return mix(folded);
    }

    /// @{
    /// Where a hash belongs: in which of so many buckets, and by which tag there.
    [[nodiscard]] static std::size_t bucket_of(std::uint64_t hash,
                                               std::size_t bucket_count) noexcept {
        return static_cast<std::size_t>(((hash >> 32) * bucket_count) >> 32);
    }
    [[nodiscard]] static std::uint8_t tag_of(std::uint64_t hash) noexcept {
        return static_cast<std::uint8_t>(hash);
    }
    /// @}
    /// The lowest of some bits, of which there must be one.
    [[nodiscard]] static unsigned first_of_set(unsigned bits) noexcept {
        return static_cast<unsigned>(std::countr_zero(bits));
    }

    void prefetch_bucket(std::uint64_t hash) const noexcept {
        __builtin_prefetch(&m_buckets[bucket_of(hash)]);
    }
    /// Also tells which state it will be, most likely; no_state where none is likely.
    StateNumber prefetch_state(std::uint64_t hash) const noexcept {
        Bucket const& bucket = m_buckets[bucket_of(hash)];
        unsigned const matches = bucket.matches(tag_of(hash));
        if (matches == 0) {
            return no_state;
        }
        StateNumber const likely = bucket.number(first_of_set(matches));
        __builtin_prefetch(words(likely));
        return likely;
    }

    [[nodiscard]] bool is_state(StateNumber state, Word const* other) const noexcept {
        return are_equal_words(words(state), other, m_width);
    }

    /// The state of these words, which is added when it is new; no_state when it is new and there
    /// are `max_states` already. `make_room` comes before.
    StateNumber find_or_add(Word const* words, std::uint64_t hash, StateNumber max_states) {
        std::size_t place = bucket_of(hash);
        for (;;) {
            Bucket const& bucket = m_buckets[place];
            for (unsigned rest = bucket.matches(tag_of(hash)); rest != 0; rest &= rest - 1) {
                StateNumber const known = bucket.number(first_of_set(rest));
                if (is_state(known, words)) {
                    return known;
                }
            }
            if (!bucket.is_full()) {
                return m_size < max_states ? add(place, words, hash) : no_state;
            }
            place = next(place);
        }
    }

    /// Room in the table for `count` more states; the work is the team's, if there is one. Where that
    /// throws std::bad_alloc the table is as it was, or, where there is no memory even for that, as before the
    /// first state: room must be made before anything else is asked.
    void make_room(std::uint64_t count, Team* team = nullptr);

    /// Forgets the states from this one on. Where that throws std::bad_alloc, none is to be found any more.
    void forget_from(StateNumber first);

    /// Makes every state `width` words long, the new ones zero. Where that throws std::bad_alloc,
    /// the states are as before, though perhaps not to be found any more.
    void widen(std::uint32_t width);

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What more would be held at some moment while `additions` more states are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    friend class NumberedKeys;
    friend class SharedAdditions;
    friend class UnorderedAdditions;

    static constexpr unsigned first_block_bits = 10;

    static unsigned block_of(StateNumber state) noexcept {
        return static_cast<unsigned>(std::bit_width(state >> first_block_bits));
    }
    static StateNumber first_of(unsigned block) noexcept {
        return (StateNumber{1} << block >> 1) << first_block_bits;
    }
    static std::size_t size_of(unsigned block) noexcept {
        return std::size_t{1} << (first_block_bits + (block == 0 ? 0 : block - 1));
    }

    [[nodiscard]] std::size_t bucket_of(std::uint64_t hash) const noexcept {
        return bucket_of(hash, m_bucket_count);
    }
    [[nodiscard]] std::size_t next(std::size_t bucket) const noexcept {
        return bucket + 1 == m_bucket_count ? 0 : bucket + 1;
    }
    /// Where the words of a state stand, or will stand; its block must be there.
    [[nodiscard]] Word* place_of(StateNumber state) const noexcept {
        unsigned const block = block_of(state);
        return m_begins[block] + std::size_t{state - first_of(block)} * m_width;
    }
    void make_blocks(std::uint64_t states);
    StateNumber add(std::size_t bucket, Word const* words, std::uint64_t hash);
    void insert(StateNumber state, std::uint64_t hash) noexcept;
    void insert_shared(StateNumber state, std::uint64_t hash) noexcept;
    void fill_buckets(std::size_t count, Team* team = nullptr);
    template <typename Insert> void fill_from(StateNumber first, StateNumber last, Insert insert);
    [[nodiscard]] std::uint64_t table_growth_bytes(std::uint64_t states) const noexcept;
    [[nodiscard]] std::size_t buckets_for(std::uint64_t states) const noexcept;
    [[nodiscard]] std::uint64_t capacity() const noexcept;

    std::uint32_t m_width;
    StateNumber m_size = 0;
    std::vector<LargeArray<Word>> m_blocks;
    /// Where each block begins, closer at hand than its owner.
    std::array<Word*, 33 - first_block_bits> m_begins{};
    LargeArray<Bucket> m_buckets;
    std::size_t m_bucket_count = 0;
};

} // namespace Calder::StateSpace
