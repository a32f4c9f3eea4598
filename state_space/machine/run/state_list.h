#pragma once

#include "core/large_array.h"
#include "state_space/export.h"
#include "state_space/machine/run/layout.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Calder::StateSpace {

/// States that wait to be explored, by what is kept of them, one behind another in chunks that never move.
class CALDER_STATE_SPACE_EXPORT StateList {
  public:
    explicit StateList(std::uint32_t width) : m_width(width) {}

    [[nodiscard]] std::size_t size() const noexcept { return m_size; }

    /// For so many more, which are then added without a look at the room. Throws std::bad_alloc.
    void make_room(std::size_t count) {
        if (m_room < count) {
            add_chunk(count);
        }
    }
    void add(Word const* words) noexcept {
        Chunk* chunk = &m_chunks[m_filling];
        if (chunk->size == chunk->capacity) {
            chunk = &m_chunks[++m_filling];
            chunk->first = m_size;
        }
        copy_words(words, &chunk->words[chunk->size++ * m_width], m_width);
        ++m_size;
        --m_room;
    }

    /// Adds all of another list, which is empty then; they stay where they are. Throws std::bad_alloc.
    void take(StateList& other);

    /// The state at a place.
    [[nodiscard]] Word* words(std::size_t place) const noexcept;
    /// Calls `told(words)` for those from `first` up to `last`, until it returns false.
    template <typename Told> void for_each(std::size_t first, std::size_t last, Told&& told) const {
        for (std::size_t place = first; place < last;) {
            Chunk const& chunk = chunk_of(place);
            std::size_t const end = std::min(last, chunk.first + chunk.size);
            for (; place < end; ++place) {
                if (!told(&chunk.words[(place - chunk.first) * m_width])) {
                    return;
                }
            }
        }
    }
    void clear() noexcept;

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept {
        return (m_size + m_room) * m_width * sizeof(Word);
    }

  private:
    struct Chunk {
        LargeArray<Word> words;
        std::size_t capacity;
        std::size_t size;
        std::size_t first; // place of its first state, once it has one
    };

    void add_chunk(std::size_t count);
    [[nodiscard]] Chunk const& chunk_of(std::size_t place) const noexcept;

    std::uint32_t m_width;
    std::vector<Chunk> m_chunks;
    std::size_t m_filling = 0; // the chunk; those before it have states
    std::size_t m_size = 0;
    std::size_t m_room = 0; // for states, from there on
};

} // namespace Calder::StateSpace
