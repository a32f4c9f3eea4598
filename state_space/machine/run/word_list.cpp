#include "state_space/machine/run/word_list.h"

namespace Calder::StateSpace {

namespace {

/// Words of a chunk, as many as there were before it: so few of a short list, so many of a long one.
constexpr std::size_t least_chunk = 16;
constexpr std::size_t most_chunk = std::size_t{1} << 13;

} // namespace

void WordList::add_chunk(std::size_t count) {
    std::size_t const capacity = std::max(count, std::clamp(m_size, least_chunk, most_chunk));
    m_chunks.push_back({make_large_array<Word>(capacity), capacity, 0, 0});
    m_room += capacity;
}

void WordList::take(WordList& other) {
    m_chunks.reserve(m_chunks.size() + other.m_chunks.size());
    m_chunks.resize(m_size == 0 ? 0 : m_filling + 1);
    for (Chunk& chunk : other.m_chunks) {
        if (chunk.size > 0) {
            chunk.first = m_size;
            m_size += chunk.size;
            m_chunks.push_back(std::move(chunk));
        }
    }
    m_filling = m_chunks.empty() ? 0 : m_chunks.size() - 1;
    m_room = m_chunks.empty() ? 0 : m_chunks.back().capacity - m_chunks.back().size;
    other.clear();
}

void WordList::clear() noexcept {
    m_chunks.clear();
    m_filling = 0;
    m_size = 0;
    m_room = 0;
}

Word& WordList::operator[](std::size_t place) noexcept {
    Chunk const& chunk = m_chunks[chunk_of(place)];
    return chunk.words[place - chunk.first];
}

std::size_t WordList::chunk_of(std::size_t place) const noexcept {
    auto const begin = m_chunks.begin();
    auto const behind =
        std::upper_bound(begin, begin + static_cast<std::ptrdiff_t>(m_filling) + 1, place,
                         [](std::size_t each, Chunk const& chunk) { return each < chunk.first; });
    return static_cast<std::size_t>(behind - begin) - 1;
}

} // namespace Calder::StateSpace
