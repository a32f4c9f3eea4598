#include "state_space/machine/run/visited_states.h"

#include "state_space/machine/run/patience.h"
#include "state_space/machine/run/team.h"

#include <algorithm>
#include <new>

namespace Calder::StateSpace {

namespace {

constexpr std::size_t first_bucket_count = 4;

/// Fuller than this, searches go on into the next bucket too often. In percent.
constexpr std::uint64_t most_load = 85;

/// How many states ahead the memory of a bucket is asked for while the table is made anew.
constexpr StateNumber fill_distance = 16;

/// What a thread of a team clears or fills at a time.
constexpr std::size_t piece = std::size_t{1} << 15;

} // namespace

void VisitedStates::make_room(std::uint64_t count, Team* team) {
    std::size_t const before = m_bucket_count;
    if (m_size + count <= capacity()) {
        return;
    }
    try {
        fill_buckets(buckets_for(m_size + count), team);
    } catch (std::bad_alloc const&) {
        fill_buckets(before, team);
        throw;
    }
}

void VisitedStates::forget_from(StateNumber first) {
    m_size = first;
    fill_buckets(m_bucket_count);
}

void VisitedStates::widen(std::uint32_t width) {
    std::vector<LargeArray<Word>> wide;
    for (unsigned number = 0; number < m_blocks.size(); ++number) {
        wide.push_back(make_large_array<Word>(size_of(number) * width));
    }
    for (StateNumber state = 0; state < m_size; ++state) {
        unsigned const number = block_of(state);
        Word* const place = &wide[number][std::size_t{state - first_of(number)} * width];
        std::copy_n(words(state), m_width, place);
        std::fill_n(place + m_width, width - m_width, Word{0});
    }
    m_width = width;
    m_blocks = std::move(wide);
    for (unsigned number = 0; number < m_blocks.size(); ++number) {
        m_begins[number] = m_blocks[number].get();
    }
    fill_buckets(m_bucket_count);
}

std::uint64_t VisitedStates::memory_bytes() const noexcept {
    return std::uint64_t{m_size} * m_width * sizeof(Word) + m_bucket_count * sizeof(Bucket);
}

std::uint64_t VisitedStates::growth_bytes(std::uint64_t additions) const noexcept {
    return additions * m_width * sizeof(Word) + table_growth_bytes(m_size + additions);
}

/// The table anew, from the words of all states.
void VisitedStates::fill_buckets(std::size_t count, Team* team) {
    m_bucket_count = 0;
    m_buckets.reset();
    m_buckets = make_large_array<Bucket>(count);
    m_bucket_count = count;
    auto const clear = [this](std::size_t first) {
        std::size_t const last = std::min(first + piece, m_bucket_count);
        std::for_each(&m_buckets[first], &m_buckets[last], [](Bucket& each) { each.clear(); });
    };
    if (team == nullptr) {
        for (std::size_t first = 0; first < count; first += piece) {
            clear(first);
        }
        fill_from(0, m_size,
                  [this](StateNumber state, std::uint64_t hash) { insert(state, hash); });
        return;
    }
    auto const pieces = [](std::size_t all) { return (all + piece - 1) / piece; };
    team->each(pieces(count), [&](unsigned, std::size_t number) { clear(number * piece); });
    team->each(pieces(m_size), [&](unsigned, std::size_t number) {
        std::size_t const first = number * piece;
        fill_from(static_cast<StateNumber>(first),
                  static_cast<StateNumber>(std::min<std::size_t>(first + piece, m_size)),
                  [this](StateNumber state, std::uint64_t hash) { insert_shared(state, hash); });
    });
}

/// Some of the states, none of which is in the table.
template <typename Insert>
void VisitedStates::fill_from(StateNumber first, StateNumber last, Insert each) {
    std::array<std::uint64_t, fill_distance> hashes{};
    StateNumber hashed = first;
    for (StateNumber state = first; state < last; ++state) {
        for (; hashed < last && hashed < state + fill_distance; ++hashed) {
            hashes[hashed % fill_distance] = hash(words(hashed), m_width);
            prefetch_bucket(hashes[hashed % fill_distance]);
        }
        each(state, hashes[state % fill_distance]);
    }
}

inline void VisitedStates::insert(StateNumber state, std::uint64_t hash) noexcept {
    std::size_t place = bucket_of(hash);
    while (m_buckets[place].is_full()) {
        place = next(place);
    }
    m_buckets[place].append(state, tag_of(hash));
}

/// The same, while other threads do so, too.
void VisitedStates::insert_shared(StateNumber state, std::uint64_t hash) noexcept {
    std::size_t place = bucket_of(hash);
    for (Patience patience;;) {
        Bucket::Head const head = m_buckets[place].shared_head();
        if (head.is_full()) {
            place = next(place);
        } else if (head.is_locked()) {
            patience.wait();
        } else if (m_buckets[place].lock(head)) {
            m_buckets[place].append_and_unlock(head, state, tag_of(hash));
            return;
        }
    }
}

/// The blocks for so many states.
void VisitedStates::make_blocks(std::uint64_t states) {
    while (states > 0 && m_blocks.size() <= block_of(static_cast<StateNumber>(states - 1))) {
        auto const block = static_cast<unsigned>(m_blocks.size());
        m_blocks.push_back(make_large_array<Word>(size_of(block) * m_width));
        m_begins[block] = m_blocks[block].get();
    }
}

/// A new state whose hash has room in the bucket.
StateNumber VisitedStates::add(std::size_t bucket, Word const* words, std::uint64_t hash) {
    if (block_of(m_size) == m_blocks.size()) {
        make_blocks(std::uint64_t{m_size} + 1);
    }
    copy_words(words, place_of(m_size), m_width);
    m_buckets[bucket].append(m_size, tag_of(hash));
    return m_size++;
}

/// The old table goes before the new one comes, which may be many times as large.
std::uint64_t VisitedStates::table_growth_bytes(std::uint64_t states) const noexcept {
    return (buckets_for(states) - m_bucket_count) * sizeof(Bucket);
}

/// Of a table that has room for so many states, at least what there are.
std::size_t VisitedStates::buckets_for(std::uint64_t states) const noexcept {
    if (states <= capacity()) {
        return m_bucket_count;
    }
    std::size_t buckets = std::max(m_bucket_count, first_bucket_count);
    while (std::uint64_t{buckets} * Bucket::size * most_load / 100 < states) {
        buckets *= 2;
    }
    return buckets;
}

/// How many states the table has room for.
std::uint64_t VisitedStates::capacity() const noexcept {
    return std::uint64_t{m_bucket_count} * Bucket::size * most_load / 100;
}

} // namespace Calder::StateSpace
