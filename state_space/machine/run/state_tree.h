#pragma once

#include "state_space/machine/run/changed_words.h"
#include "state_space/machine/run/numbered_keys.h"

#include <array>

namespace Calder::StateSpace {

/// Keeps states of many words as two words each, after Laarman, van de Pol and Weber, "Parallel recursive state
/// compression for free" (2011). The leaves of a tree are the words of the state, a few next to each other in
/// each; any other node is the numbers of the four nodes below it. Equal leaves have one number, and so have equal
/// nodes. The root stands for the state: two states have the same one just if they are the same.
///
/// A successor has most nodes in common with its source. What it changes is looked up anew, from the leaves to
/// the root: for each leaf one lookup a level, fewer where their ways meet. So the cost of a step follows what it
/// changes, and a state takes little more than its root: a quarter of it is often one that was there before.
///
/// Four branches, as a tree of two is twice as high, and takes twice the lookups. Leaves are so large that there
/// are just four for each node above them, or hardly fewer: then no part has most of the changes to itself.
/// Words behind the last one of a state are zero.
///
/// Several threads may read and join at once between `begin_sharing` and `end_sharing`.
class CALDER_STATE_SPACE_EXPORT StateTree {
  public:
    using Number = NumberedKeys::Number;
    /// Of each node but the leaves.
    static constexpr std::uint32_t node_words = 2;
    using Node = std::array<Word, node_words>;

    /// What a thread needs to find successors; it keeps its storage.
    struct Work {
        ChangedWords changes;

      private:
        friend class StateTree;
        struct Changed {
            std::uint32_t source;
            std::uint32_t step;
            std::uint32_t place;
            Number number;
        };
        std::uint32_t sources = 0;
        std::vector<Number> numbers; // of the nodes of each source, by place
        std::vector<Word> words;     // of the last one
        // What steps have in the place of their source's, on one level.
        std::vector<Changed> changed;
        std::vector<std::uint64_t> hashes;
        std::vector<Node> nodes; // but for leaves
    };

    /// For states of up to `width` words.
    explicit StateTree(std::uint32_t width);

    /// Of the widest states that it has room for.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_leaves.width() * m_leaf_count; }

    /// What stands for a state of `width` words.
    Node root_of(Word const* words, std::uint32_t width);
    /// The first `width` words of the state.
    [[nodiscard]] std::vector<Word> words(Word const* root, std::uint32_t width) const;
    [[nodiscard]] Word first_word(Word const* root) const noexcept;

    /// @{
    /// Finds the successors of states in a row: first `begin`; then for each state `begin_source`, and what
    /// SuccessorTable tells of its words to the changes; in the end `join` writes to each of the steps what
    /// stands for its state. The words that `begin_source` returns are good until the next one.
    void begin(Work& work) const noexcept;
    Word const* begin_source(Word const* root, std::uint32_t width, Steps& steps, Work& work) const;
    /// Whether it has so many sources that more at once would only take memory.
    [[nodiscard]] bool is_full(Work const& work) const noexcept;
    void join(Steps& steps, Work& work);
    /// @}

    /// Room for what so many more states are made of, where they are like the known ones. Beyond that `join` throws
    /// std::bad_alloc; otherwise it makes room itself. Whoever is alone again may end it and go on later.
    void begin_sharing(std::uint64_t additions, std::uint64_t known, Team& team);
    void end_sharing() noexcept { m_is_shared = false; }
    void go_on_sharing() noexcept { m_is_shared = true; }

    [[nodiscard]] std::uint64_t memory_bytes() const noexcept {
        return m_leaves.memory_bytes() + m_nodes.memory_bytes();
    }
    /// What more would be held at some moment while so many more nodes are added.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        return m_leaves.growth_bytes(additions) + m_nodes.growth_bytes(additions);
    }
    /// The same for that room.
    [[nodiscard]] std::uint64_t sharing_bytes(std::uint64_t additions, std::uint64_t known,
                                              unsigned threads) const noexcept;

  private:
    // Nodes have places as in a heap: the root 0, those below `place` from 4 * place + 1 on.
    static constexpr std::uint32_t branches = 4;

    static std::uint32_t first_below(std::uint32_t place) noexcept { return branches * place + 1; }
    static std::uint32_t above(std::uint32_t place) noexcept { return (place - 1) / branches; }
    static std::uint32_t branch(std::uint32_t place) noexcept { return (place - 1) % branches; }
    static Number number(Word const* node, std::uint32_t branch) noexcept {
        return static_cast<Number>(node[branch / 2] >> (branch % 2 * 32));
    }
    static Node node_of(Number const* below) noexcept {
        return {below[0] | Word{below[1]} << 32, below[2] | Word{below[3]} << 32};
    }

    [[nodiscard]] static unsigned levels_for(std::uint32_t width);
    [[nodiscard]] std::uint32_t place_count() const noexcept { return m_first_leaf + m_leaf_count; }
    [[nodiscard]] std::uint32_t leaves_of(std::uint32_t width) const noexcept {
        return (width - 1) / m_leaves.width() + 1;
    }
    void split(Word const* root, std::uint32_t width, Number* numbers, Word* words) const noexcept;
    void find_leaves(Work& work);
    void find_nodes(Work& work);
    void go_up(Work& work) const noexcept;
    [[nodiscard]] Node node_above(Work const& work, std::size_t& place) const noexcept;

    unsigned m_levels; // below the root
    std::uint32_t m_leaf_count;
    std::uint32_t m_first_leaf;
    bool m_is_shared = false;
    NumberedKeys m_leaves;
    NumberedKeys m_nodes{node_words};
};

} // namespace Calder::StateSpace
