#pragma once

#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/successor_table.h"

#include <span>

namespace Calder::StateSpace {

/// A few states in a row whose successors are wanted, and then these, with their hashes. It has all
/// that a thread needs to find them, and keeps its storage.
class SearchJob {
  public:
    /// For some of these states, which have no more than `most_steps` successors together.
    void clear(ReachedStates& states, std::size_t most_steps = Steps::unbounded) noexcept;
    void add_source(StateNumber state, SuccessorTable const& table);

    /// Finds the successors, as they are kept. Throws std::bad_alloc, also where there are more than were given.
    void search();

    [[nodiscard]] std::size_t source_count() const noexcept { return m_tables.size(); }
    [[nodiscard]] Steps const& steps() const noexcept { return m_steps; }
    [[nodiscard]] std::uint64_t hash(std::size_t step) const noexcept { return m_hashes[step]; }
    [[nodiscard]] std::span<std::uint64_t const> hashes() const noexcept { return m_hashes; }
    /// Where the successors of the source of this number end.
    [[nodiscard]] std::size_t row_end(std::size_t source) const noexcept {
        return m_row_ends[source];
    }

  private:
    void append_successors();
    void append_roots();
    void hash_steps();

    ReachedStates* m_states = nullptr;
    std::vector<StateNumber> m_sources;
    std::vector<SuccessorTable const*> m_tables; // by source
    Steps m_steps;
    std::vector<std::uint64_t> m_hashes; // by step
    std::vector<std::size_t> m_row_ends; // by source
    std::vector<StateNumber> m_scratch;
    StateTree::Work m_work;
};

} // namespace Calder::StateSpace
