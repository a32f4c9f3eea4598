#pragma once

#include "core/large_array.h"
#include "state_space/export.h"
#include "state_space/machine/run/lateness.h"
#include "state_space/machine/run/word_hash.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <mutex>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Calder::StateSpace {

class Team;

/// The states of a machine that were reached, as nothing but their words: for who counts them, and needs no
/// numbers. Threads may add to it at once, and none of them waits but for words that are being written.
///
/// Open addressing by groups of eight: first the hashes of eight states, a cache line, and behind them the other words of
/// each. Hash and other words tell the first word, so it is not kept: a state takes its words, and a state of one
/// word is found with one line of memory. Who adds a state writes the other words between two writes of the hash,
/// the first of which takes the place. A full group goes on in the next one.
///
/// The groups stand in the order of the hashes, so that it grows in place, by walks through the old groups and the new
/// ones, and no page is asked from the system twice: 8 bytes a word, times 1.3 to 2.7.
class CALDER_STATE_SPACE_EXPORT StateSet {
  public:
    explicit StateSet(std::uint32_t width) : m_width(width) {}
    void swap(StateSet& other) noexcept;

    [[nodiscard]] StateNumber size() const noexcept { return m_size; }
    /// The words of each state.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_width; }

    /// By hash_of_words. What `find_or_add` will need first.
    void prefetch(std::uint64_t hash) const noexcept { __builtin_prefetch(group_of(hash)); }
    /// What it will need then, where states have other words.
    void prefetch_others(std::uint64_t hash) const noexcept {
        Word* const group = group_of(hash);
        if (unsigned const equal = look(group, hash).equal; equal != 0) {
            __builtin_prefetch(others(group, first_of_set(equal)));
        }
    }

    enum class Found : unsigned char { known, added, one_too_many };
    /// Adds the state of these words when it is new, unless there are `max_states`. `make_room` comes before.
    Found find_or_add(Word const* words, std::uint64_t hash, StateNumber max_states) {
        Found const found = find_or_add<false>(words, hash, m_size < max_states);
        m_size += found == Found::added ? 1 : 0;
        return found;
    }

    /// The same for several threads at once, who add as many as there is room for. `note_additions` follows, when
    /// they are done.
    Found find_or_add_shared(Word const* words, std::uint64_t hash) {
        return find_or_add<true>(words, hash, true);
    }
    void note_additions(std::uint64_t count) noexcept { m_size += static_cast<StateNumber>(count); }

    /// Room for `count` more states; the work is the team's, if there is one. Throws std::bad_alloc, and is then
    /// as before.
    void make_room(std::uint64_t count, Team* team = nullptr);

    /// Calls `told(words)` for each state, in no order that means anything.
    template <typename Told> void for_each(Told&& told) const;

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept;
    /// What more would be held at some moment while `additions` more states are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept;

  private:
    static constexpr unsigned group_size = 8;
    // In the place of a hash.
    static constexpr Word is_free = 0;
    static constexpr Word is_being_written = 1;

    /// Of a group at one moment, bit i for each place i: where the hash stands, and where what stands could be, or
    /// become, that of a state that was added last.
    struct Seen {
        unsigned equal;
        unsigned unsettled;
    };

    static unsigned first_of_set(unsigned bits) noexcept {
        return static_cast<unsigned>(std::countr_zero(bits));
    }
    /// The place of the lowest bit; where there is none, behind all places.
    static unsigned first_of(unsigned bits) noexcept {
        return first_of_set(bits | 1U << group_size);
    }
    static bool is_free_now(Word* group, unsigned place) noexcept {
        return std::atomic_ref(group[place]).load(std::memory_order_relaxed) == is_free;
    }
    [[nodiscard]] std::size_t next(std::size_t number) const noexcept {
        return number + 1 == m_group_count ? 0 : number + 1;
    }
    [[nodiscard]] static Seen look(Word const* group, std::uint64_t hash) noexcept;
    [[nodiscard]] std::size_t number_of_group(std::uint64_t hash) const noexcept {
        return static_cast<std::size_t>(((hash >> 32) * m_group_count) >> 32);
    }
    [[nodiscard]] Word* group(std::size_t number) const noexcept {
        return m_groups.get() + number * group_size * m_width;
    }
    [[nodiscard]] Word* group_of(std::uint64_t hash) const noexcept {
        return group(number_of_group(hash));
    }
    [[nodiscard]] Word* others(Word* group, unsigned place) const noexcept {
        return group + group_size + std::size_t{place} * (m_width - 1);
    }
    [[nodiscard]] bool has_others(Word* group, unsigned place, Word const* words) const noexcept {
        return m_width == 1 || are_equal_words(others(group, place), words + 1, m_width - 1);
    }

    void write_others(Word* group, unsigned place, Word const* words) noexcept {
        if (m_width > 1) {
            copy_words(words, others(group, place), m_width - 1);
        }
    }

    /// Whether the state stands at the place.
    [[nodiscard]] bool is_state(Word* group, unsigned place, Word const* words,
                                std::uint64_t hash) const noexcept {
        return std::atomic_ref(group[place]).load(std::memory_order_acquire) == hash &&
               has_others(group, place, words);
    }

    template <bool is_shared>
    Found find_or_add(Word const* words, std::uint64_t hash, bool may_add);
    template <bool is_shared>
    Found find_or_add_from(std::size_t number, Word const* words, std::uint64_t hash, bool may_add);
    template <bool is_shared>
    bool take_place(Word* group, unsigned place, Word const* others, std::uint64_t hash) noexcept;
    Found find_or_add_unusual(Word const* words, bool may_add);
    template <bool is_shared> void insert(Word const* others, std::uint64_t hash) noexcept;
    void note_displaced(std::size_t groups) noexcept;
    void grow_groups(std::size_t count);
    void move_groups(std::size_t first, std::size_t last, Team* team);
    template <bool is_shared> void move(Word* group) noexcept;

    [[nodiscard]] static std::uint64_t capacity(std::size_t groups) noexcept;
    [[nodiscard]] std::size_t groups_for(std::uint64_t states) const noexcept;
    [[nodiscard]] std::uint64_t bytes_of(std::size_t groups) const noexcept {
        return std::uint64_t{groups} * group_size * m_width * sizeof(Word);
    }

    std::uint32_t m_width;
    StateNumber m_size = 0;
    LargeArray<Word> m_groups;
    std::size_t m_group_count = 0;
    std::size_t m_most_displaced = 0; // how many groups behind its own a state may stand
    // States whose hash is one of those that mean something else: hardly any.
    std::mutex m_unusual_mutex;
    std::vector<Word> m_unusual;
};

inline StateSet::Seen StateSet::look(Word const* group, std::uint64_t hash) noexcept {
#ifdef __SSE2__
    // The lower halves of the hashes; the whole ones are compared where these are equal. The compiler's own loads
    // would be no good while other threads write; these, like any of eight bytes, see each hash as a whole.
    __m128i loaded[4];
    for (unsigned i = 0; i < 4; ++i) {
        asm("movdqa %1, %0" : "=x"(loaded[i]) : "m"(reinterpret_cast<__m128i const*>(group)[i]));
    }
    auto const lower_halves = [](__m128i left, __m128i right) {
        return _mm_castps_si128(
            _mm_shuffle_ps(_mm_castsi128_ps(left), _mm_castsi128_ps(right), 0x88));
    };
    auto const bits = [](__m128i left, __m128i right) {
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_packs_epi16(_mm_packs_epi32(left, right), _mm_setzero_si128())));
    };
    __m128i const first = lower_halves(loaded[0], loaded[1]);
    __m128i const last = lower_halves(loaded[2], loaded[3]);
    __m128i const wanted = _mm_set1_epi32(static_cast<int>(hash));
    __m128i const most_unsettled = _mm_set1_epi32(~1);
    __m128i const zero = _mm_setzero_si128();
    return {bits(_mm_cmpeq_epi32(first, wanted), _mm_cmpeq_epi32(last, wanted)),
            bits(_mm_cmpeq_epi32(_mm_and_si128(first, most_unsettled), zero),
                 _mm_cmpeq_epi32(_mm_and_si128(last, most_unsettled), zero))};
#else
    Seen seen{0, 0};
    for (unsigned place = 0; place < group_size; ++place) {
        Word const found =
            std::atomic_ref(const_cast<Word&>(group[place])).load(std::memory_order_relaxed);
        seen.equal |= (found == hash ? 1U : 0U) << place;
        seen.unsettled |= (found <= is_being_written ? 1U : 0U) << place;
    }
    return seen;
#endif
}

/// Most states stand in the group in which they are looked for first, or are to be added there.
template <bool is_shared>
StateSet::Found StateSet::find_or_add(Word const* words, std::uint64_t hash, bool may_add) {
    std::size_t const number = number_of_group(hash);
    Word* const group = this->group(number);
    Seen const seen = look(group, hash);
    if (hash > is_being_written) {
        if (seen.equal != 0) {
            if (is_state(group, first_of_set(seen.equal), words, hash)) {
                return Found::known;
            }
        } else if (unsigned const place = first_of(seen.unsettled);
                   may_add && place < group_size && is_free_now(group, place) &&
                   take_place<is_shared>(group, place, words + 1, hash)) {
            return Found::added;
        }
    }
    return find_or_add_from<is_shared>(number, words, hash, may_add);
}

/// False when another thread was first.
template <bool is_shared> bool StateSet::take_place(Word* group, unsigned place, Word const* others,
                                                    std::uint64_t hash) noexcept {
    if constexpr (!is_shared) {
        group[place] = hash;
        write_others(group, place, others);
        return true;
    }
    std::atomic_ref own(group[place]);
    Word expected = is_free;
    may_be_late();
    if (m_width == 1) {
        return own.compare_exchange_strong(expected, hash, std::memory_order_relaxed);
    }
    if (!own.compare_exchange_strong(expected, is_being_written, std::memory_order_relaxed)) {
        return false;
    }
    may_be_late();
    write_others(group, place, others);
    own.store(hash, std::memory_order_release);
    return true;
}

template <typename Told> void StateSet::for_each(Told&& told) const {
    std::vector<Word> words(m_width);
    for (std::size_t number = 0; number < m_group_count; ++number) {
        Word* const group = this->group(number);
        for (unsigned place = 0; place < group_size && group[place] != is_free; ++place) {
            std::copy_n(others(group, place), m_width - 1, words.begin() + 1);
            words[0] = first_of_words(words.data() + 1, group[place], m_width);
            told(words.data());
        }
    }
    for (std::size_t first = 0; first < m_unusual.size(); first += m_width) {
        told(&m_unusual[first]);
    }
}

} // namespace Calder::StateSpace
