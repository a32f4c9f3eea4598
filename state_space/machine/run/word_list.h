#pragma once

#include "core/large_array.h"
#include "state_space/export.h"
#include "state_space/machine/run/layout.h"

#include <algorithm>
#include <vector>

namespace Calder::StateSpace {

/// States of one word that wait to be explored, one behind another in chunks that never move.
class CALDER_STATE_SPACE_EXPORT WordList {
  public:
    [[nodiscard]] std::size_t size() const noexcept { return m_size; }

    /// For so many more, which are then added without a look at the room. Throws std::bad_alloc.
    void make_room(std::size_t count) {
        if (m_room < count) {
            add_chunk(count);
        }
    }
    void add(Word word) noexcept {
        Chunk* chunk = &m_chunks[m_filling];
        if (chunk->size == chunk->capacity) {
            chunk = &m_chunks[++m_filling];
            chunk->first = m_size;
        }
        chunk->words[chunk->size++] = word;
        ++m_size;
        --m_room;
    }

    /// Adds all of another list, which is empty then; they stay where they are. Throws std::bad_alloc, and both are
    /// then as before.
    void take(WordList& other);
    void clear() noexcept;

    /// At a place.
    [[nodiscard]] Word& operator[](std::size_t place) noexcept;
    /// Calls `told(word)` for those from `first` up to `last`, where they stand, until it returns false.
    template <typename Told> void for_each(std::size_t first, std::size_t last, Told&& told) const {
        for (std::size_t place = first; place < last;) {
            Chunk const& chunk = m_chunks[chunk_of(place)];
            std::size_t const end = std::min(last, chunk.first + chunk.size);
            for (; place < end; ++place) {
                if (!told(&chunk.words[place - chunk.first])) {
                    return;
                }
            }
        }
    }

  private:
    struct Chunk {
        LargeArray<Word> words;
        std::size_t capacity;
        std::size_t size;
        std::size_t first; // place of its first word, once it has one
    };

    void add_chunk(std::size_t count);
    [[nodiscard]] std::size_t chunk_of(std::size_t place) const noexcept;

    std::vector<Chunk> m_chunks;
    std::size_t m_filling = 0; // the chunk; those before it have words
    std::size_t m_size = 0;
    std::size_t m_room = 0; // for words, from there on
};

} // namespace Calder::StateSpace
