#include "state_space/machine/run/visited_states.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

constexpr std::size_t first_bucket_count = 4;

/// Fuller than this, searches go on into the next bucket too often. In percent.
constexpr std::uint64_t most_load = 85;

/// How many states ahead the memory of a bucket is asked for while the table is made anew.
constexpr StateNumber fill_distance = 16;

} // namespace

void VisitedStates::make_room(std::uint64_t count) {
    if (m_size + count <= capacity()) {
        return;
    }
    std::size_t buckets = std::max(m_bucket_count, first_bucket_count);
    while (buckets * bucket_size * most_load / 100 < m_size + count) {
        buckets *= 2;
    }
    fill_buckets(buckets);
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
    std::uint64_t const words = additions * m_width * sizeof(Word);
    return m_size + additions <= capacity() ? words : words + m_bucket_count * sizeof(Bucket);
}

/// The table anew, from the words of all states.
void VisitedStates::fill_buckets(std::size_t count) {
    m_bucket_count = 0;
    m_buckets.reset();
    m_buckets = make_large_array<Bucket>(count);
    m_bucket_count = count;
    for (std::size_t bucket = 0; bucket < count; ++bucket) {
        m_buckets[bucket].count = 0;
    }
    std::array<std::uint64_t, fill_distance> hashes{};
    StateNumber hashed = 0;
    for (StateNumber state = 0; state < m_size; ++state) {
        for (; hashed < m_size && hashed < state + fill_distance; ++hashed) {
            hashes[hashed % fill_distance] = hash(words(hashed), m_width);
            prefetch_bucket(hashes[hashed % fill_distance]);
        }
        insert(state, hashes[state % fill_distance]);
    }
}

/// A state that is not in the table.
void VisitedStates::insert(StateNumber state, std::uint64_t hash) noexcept {
    std::size_t place = bucket_of(hash);
    while (m_buckets[place].count == bucket_size) {
        place = next(place);
    }
    m_buckets[place].append(state, tag_of(hash));
}

/// A new state whose hash has room in the bucket.
StateNumber VisitedStates::add(std::size_t bucket, Word const* words, std::uint64_t hash) {
    unsigned const block = block_of(m_size);
    if (block == m_blocks.size()) {
        m_blocks.push_back(make_large_array<Word>(size_of(block) * m_width));
        m_begins[block] = m_blocks[block].get();
    }
    copy_words(words, m_begins[block] + std::size_t{m_size - first_of(block)} * m_width, m_width);
    m_buckets[bucket].append(m_size, tag_of(hash));
    return m_size++;
}

/// How many states the table has room for.
std::uint64_t VisitedStates::capacity() const noexcept {
    return std::uint64_t{m_bucket_count} * bucket_size * most_load / 100;
}

} // namespace Calder::StateSpace
