#pragma once

#include "state_space/machine/run/state_tree.h"
#include "state_space/machine/run/successor_table.h"

#include <span>

namespace Calder::StateSpace {

/// A few states in a row whose successors are wanted, and then these, with their hashes. It has all
/// that a thread needs to find them, and keeps its storage.
class SearchJob {
  public:
    /// How the states are kept: as so many words, or, where there is a tree, as its roots.
    struct Form {
        std::uint32_t width;
        StateTree* tree;

        [[nodiscard]] std::uint32_t kept_width() const noexcept {
            return tree == nullptr ? width : StateTree::node_words;
        }
    };

    /// For some states, which have no more than `most_steps` successors together.
    void clear(Form form, std::size_t most_steps = Steps::unbounded) noexcept;
    /// By what is kept of it, which must stay there until the search is done.
    void add_source(Word const* kept, SuccessorTable const& table);

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

    Form m_form{1, nullptr};
    std::vector<Word const*> m_sources;
    std::vector<SuccessorTable const*> m_tables; // by source
    Steps m_steps;
    std::vector<std::uint64_t> m_hashes; // by step
    std::vector<std::size_t> m_row_ends; // by source
    std::vector<StateNumber> m_scratch;
    StateTree::Work m_work;
};

} // namespace Calder::StateSpace
