#pragma once

#include "state_space/machine/run/successor_table.h"

#include <span>

namespace Calder::StateSpace {

/// A few states in a row whose successors are wanted, and then these, with their hashes. It has all
/// that a thread needs to find them, and keeps its storage.
class SearchJob {
  public:
    /// For states of `width` words each, that have no more than `most_steps` successors together.
    void clear(std::uint32_t width, std::size_t most_steps = Steps::unbounded) noexcept;
    void add_source(Word const* state, SuccessorTable const& table);

    /// Finds the successors. Throws std::bad_alloc, also where there are more than were given.
    void search();

    /// Makes the successors longer; see Steps.
    void widen(std::uint32_t width);

    [[nodiscard]] std::size_t source_count() const noexcept { return m_tables.size(); }
    [[nodiscard]] Steps const& steps() const noexcept { return m_steps; }
    [[nodiscard]] std::uint64_t hash(std::size_t step) const noexcept { return m_hashes[step]; }
    [[nodiscard]] std::span<std::uint64_t const> hashes() const noexcept { return m_hashes; }
    /// Where the successors of the source of this number end.
    [[nodiscard]] std::size_t row_end(std::size_t source) const noexcept {
        return m_row_ends[source];
    }

  private:
    void hash_steps();

    std::uint32_t m_width = 1;
    std::vector<Word> m_sources;
    std::vector<SuccessorTable const*> m_tables; // by source
    Steps m_steps;
    std::vector<std::uint64_t> m_hashes; // by step
    std::vector<std::size_t> m_row_ends; // by source
    std::vector<StateNumber> m_scratch;
};

} // namespace Calder::StateSpace
