#pragma once

#include "state_space/machine/compile/machine.h"
#include "state_space/stack_guard.h"

#include <deque>
#include <span>
#include <unordered_map>

namespace Calder::StateSpace {

using ConfigurationNumber = std::uint32_t;

/// The combinations of formats that a machine can be in, numbered: trees of constructs, each in one
/// of its formats, over the parts that run there. Equal trees have one number. What leads from one
/// to another is the flattening's.
///
/// A construct in a format that only lets one argument through is left out in favour of the
/// argument: that is how a choice that is made, or a recursion that comes round, leads back to a
/// configuration that is there already.
///
/// The slots of a configuration are the leaves that run in it, from left to right.
class Configurations {
  public:
    explicit Configurations(Machine const& machine);

    [[nodiscard]] Machine const& machine() const noexcept { return m_machine; }

    /// In which the machine starts, every leaf in its state 0. This and the next throw
    /// MachineRefusal when the tree is too deep for the stack or has more than `most_slots`.
    [[nodiscard]] ConfigurationNumber start() { return start_of(m_machine.start); }
    /// In which the part starts.
    [[nodiscard]] ConfigurationNumber start_of(PartNumber part);
    /// The configuration of the part in the format over these children, one for each argument that
    /// runs; the child alone where the format lets it through.
    [[nodiscard]] ConfigurationNumber in_format(PartNumber part, std::uint32_t format,
                                                std::vector<ConfigurationNumber> const& children);

    /// What stands at the root of the tree: a leaf, or a construct in the format over the
    /// children's trees. `none` where nothing runs and nothing can happen.
    [[nodiscard]] PartNumber part(ConfigurationNumber number) const noexcept {
        return m_trees[number].key[0];
    }
    [[nodiscard]] std::uint32_t format(ConfigurationNumber number) const noexcept {
        return m_trees[number].key[1];
    }
    /// Stays good.
    [[nodiscard]] std::span<ConfigurationNumber const>
    children(ConfigurationNumber number) const noexcept {
        return std::span(m_trees[number].key).subspan(2);
    }
    [[nodiscard]] std::uint32_t slot_count(ConfigurationNumber number) const noexcept {
        return m_trees[number].slot_count;
    }
    /// The numbers of the leaves, by slot.
    [[nodiscard]] std::vector<std::uint32_t> leaves(ConfigurationNumber number) const;

    static constexpr std::uint32_t most_slots = 1U << 22;

  private:
    struct Tree {
        /// What makes two of them equal: a part, its format, and the configurations of the
        /// arguments that run.
        std::vector<std::uint32_t> key;
        std::uint32_t slot_count = 0;
    };
    struct KeyHash {
        std::size_t operator()(std::vector<std::uint32_t> const& key) const noexcept;
    };

    ConfigurationNumber numbered(std::vector<std::uint32_t> key, std::uint32_t slot_count);

    Machine const& m_machine;
    StackGuard const m_stack{};
    std::deque<Tree> m_trees; // by number; stay where they are
    std::unordered_map<std::vector<std::uint32_t>, ConfigurationNumber, KeyHash> m_numbers;
    std::vector<ConfigurationNumber> m_starts; // by part; `none` before the first use
};

} // namespace Calder::StateSpace
