#pragma once

#include "core/large_array.h"
#include "state_space/export.h"
#include "state_space/labelled_transition_system.h"
#include "state_space/machine/run/lateness.h"
#include "state_space/machine/run/layout.h"

#include <atomic>
#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Calder::StateSpace {

class Team;

/// The states of a machine that were reached, for who counts them and needs no numbers. Each is one word, of
/// which only the hash is kept: VisitedStates::hash, which is one to one. Threads may add at once, and none of them
/// waits for another.
///
/// Open addressing by groups of eight hashes, a cache line: whether a state is new is mostly told by one line of
/// memory. A full group goes on in the next one. The groups stand in the order of the hashes, so that the set
/// grows in place, by walks through the old groups and the new ones. 11 to 21 bytes a state.
class CALDER_STATE_SPACE_EXPORT WordSet {
  public:
    using Hash = std::uint64_t;
    enum class Found : unsigned char { known, added, one_too_many };

    WordSet() = default;
    WordSet(WordSet const&) = delete;
    WordSet& operator=(WordSet const&) = delete;

    [[nodiscard]] StateNumber size() const noexcept { return m_size; }

    /// Asks for the memory that is looked at first.
    void prefetch(Hash hash) const noexcept { __builtin_prefetch(group_of(hash)); }
    /// Adds the state of this hash when it is new, unless there are `max_states`. `make_room` comes before.
    Found find_or_add(Hash hash, StateNumber max_states) noexcept {
        Found const found = find_or_add<false>(hash, m_size < max_states);
        m_size += found == Found::added ? 1 : 0;
        return found;
    }
    /// The same by several threads at once, who add as many as there is room for. `note_additions` follows, when
    /// they are done.
    Found find_or_add_shared(Hash hash) noexcept { return find_or_add<true>(hash, true); }
    void note_additions(std::uint64_t count) noexcept { m_size += static_cast<StateNumber>(count); }

    /// Room for `count` more states; the work is the team's, if there is one. Throws std::bad_alloc, and is then
    /// as before.
    void make_room(std::uint64_t count, Team* team = nullptr);

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept { return bytes_of(m_group_count); }
    /// What more would be held while `additions` more states are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        return bytes_of(groups_for(m_size + additions)) - bytes_of(m_group_count);
    }

  private:
    static constexpr unsigned group_size = 8;
    static constexpr Hash is_free = 0; // in the place of a hash

    /// Of a group at one look at it, bit i for each place i where the lower half is that of the hash, and where it is
    /// that of a free place; the whole hash may still be another one.
    struct Places {
        unsigned same;
        unsigned free;
    };

    struct alignas(64) Group {
        /// By one load of each place: with two, another thread may add the hash between them, and it is added twice.
        [[nodiscard]] Places places(Hash hash) const noexcept;

        Hash hashes[group_size];
    };

    [[nodiscard]] std::size_t number_of_group(Hash hash) const noexcept {
        return static_cast<std::size_t>(((hash >> 32) * m_group_count) >> 32);
    }
    [[nodiscard]] Group* group_of(Hash hash) const noexcept {
        return &m_groups[number_of_group(hash)];
    }
    [[nodiscard]] static Hash read(Hash& place) noexcept {
        return std::atomic_ref(place).load(std::memory_order_relaxed);
    }
    template <bool is_shared> static bool take(Hash& place, Hash hash) noexcept;
    template <bool is_shared> Found find_or_add(Hash hash, bool may_add) noexcept;
    template <bool is_shared> Found find_or_add_slowly(Hash hash, bool may_add) noexcept;
    Found find_or_add_zero(bool may_add) noexcept;
    void note_displaced(std::size_t groups) noexcept;

    void grow_groups(std::size_t count);
    void move_groups(std::size_t first, std::size_t last, Team* team) noexcept;
    template <bool is_shared> void move(Group& group) noexcept;

    [[nodiscard]] std::size_t groups_for(std::uint64_t states) const noexcept;
    [[nodiscard]] static std::uint64_t bytes_of(std::size_t groups) noexcept {
        return std::uint64_t{groups} * sizeof(Group);
    }

    StateNumber m_size = 0;
    LargeArray<Group> m_groups;
    std::size_t m_group_count = 0;
    std::size_t m_most_displaced = 0;     // how many groups behind its own a hash may stand
    std::atomic<bool> m_has_zero = false; // the hash that means a free place
};

inline WordSet::Places WordSet::Group::places(Hash hash) const noexcept {
#ifdef __SSE2__
    // The compiler's own loads would be no good while other threads write. These see each half of a hash as a whole,
    // like any loads that small.
    __m128i loaded[4];
    for (unsigned i = 0; i < 4; ++i) {
        asm("movdqa %1, %0" : "=x"(loaded[i]) : "m"(reinterpret_cast<__m128i const*>(hashes)[i]));
    }
    auto const lower_halves = [](__m128i left, __m128i right) {
        return _mm_castps_si128(
            _mm_shuffle_ps(_mm_castsi128_ps(left), _mm_castsi128_ps(right), 0x88));
    };
    __m128i const first = lower_halves(loaded[0], loaded[1]);
    __m128i const last = lower_halves(loaded[2], loaded[3]);
    auto const equal = [&](__m128i wanted) {
        __m128i const words =
            _mm_packs_epi32(_mm_cmpeq_epi32(first, wanted), _mm_cmpeq_epi32(last, wanted));
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_packs_epi16(words, _mm_setzero_si128())));
    };
    return {equal(_mm_set1_epi32(static_cast<int>(hash))), equal(_mm_setzero_si128())};
#else
    Places found{0, 0};
    for (unsigned place = 0; place < group_size; ++place) {
        auto const half = static_cast<std::uint32_t>(read(const_cast<Hash&>(hashes[place])));
        found.same |= (half == static_cast<std::uint32_t>(hash) ? 1U : 0U) << place;
        found.free |= (half == static_cast<std::uint32_t>(is_free) ? 1U : 0U) << place;
    }
    return found;
#endif
}

/// False when another thread was first.
template <bool is_shared> bool WordSet::take(Hash& place, Hash hash) noexcept {
    if constexpr (is_shared) {
        Hash expected = is_free;
        may_be_late();
        return std::atomic_ref(place).compare_exchange_strong(expected, hash,
                                                              std::memory_order_relaxed);
    } else {
        place = hash;
        return true;
    }
}

/// Most states stand in the group in which they are looked for first, or are to be added there. Places of a group are
/// taken in order.
template <bool is_shared> WordSet::Found WordSet::find_or_add(Hash hash, bool may_add) noexcept {
    Group& group = *group_of(hash);
    Places const places = group.places(hash);
    if (places.same != 0) {
        if (read(group.hashes[std::countr_zero(places.same)]) == hash && hash != is_free) {
            return Found::known;
        }
    } else if (places.free != 0 && may_add) {
        Hash& place = group.hashes[std::countr_zero(places.free)];
        if (read(place) == is_free && take<is_shared>(place, hash)) {
            return Found::added;
        }
    }
    return find_or_add_slowly<is_shared>(hash, may_add);
}

} // namespace Calder::StateSpace
