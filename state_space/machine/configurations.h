#pragma once

#include "state_space/machine/machine.h"
#include "state_space/stack_guard.h"

#include <deque>
#include <span>
#include <stdexcept>
#include <unordered_map>

namespace Calder::StateSpace {

using ConfigurationNumber = std::uint32_t;

/// A machine that can be compiled but not run.
class MachineRefusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The component in one slot of a configuration performs an event of its alphabet.
struct Participant {
    bool operator==(Participant const&) const = default;

    std::uint32_t slot;
    unsigned event;
};

/// The rules of a whole configuration, flattened: whoever reads them walks no tree.
struct FlatRules {
    struct Rule {
        unsigned event;
        ConfigurationNumber target;
        std::uint32_t first_participant;
        std::uint32_t participant_count;
        /// Where the sources of the target's slots begin; `none` when the machine stays in the
        /// configuration and each slot keeps its component.
        std::uint32_t first_source;

        bool stays() const noexcept { return first_source == none; }
    };

    /// A slot of the target whose component starts afresh.
    static constexpr std::uint32_t fresh = none;

    /// Ascending by event, those of one event in the order of the constructs' rules, where doubles
    /// side by side count once.
    std::vector<Rule> rules;
    std::vector<Participant> participants; // rule after rule
    std::vector<std::uint32_t> sources; // rule after rule: for each slot of the target, whose state

    std::span<Participant const> participants_of(Rule const& rule) const noexcept {
        return std::span(participants).subspan(rule.first_participant, rule.participant_count);
    }
    std::span<Rule const> of_event(unsigned event) const;
};

/// The combinations of formats that a machine can be in: trees of constructs, each in one of its
/// formats, over the parts that run there. Equal trees have one number.
///
/// A construct in a format that only lets one argument through is left out in favour of the
/// argument: that is how a choice that is made, or a recursion that comes round, leads back to a
/// configuration that is there already.
///
/// The slots of a configuration are the components that run in it, from left to right.
class Configurations {
  public:
    explicit Configurations(Machine const& machine);

    /// In which the machine starts, every component in its state 0.
    ConfigurationNumber start() { return start_of(m_machine.start); }

    std::uint32_t slot_count(ConfigurationNumber number) const {
        return m_nodes[number].slot_count;
    }
    /// The numbers of the components, by slot.
    std::vector<std::uint32_t> components(ConfigurationNumber number) const;

    /// Made on first use, from those of the configuration's subtrees, which are kept as well. The
    /// reference stays good. Throws MachineRefusal when there are more rules than `most_rules`, or
    /// when the tree is too deep for the stack.
    FlatRules const& rules(ConfigurationNumber number);

    static constexpr std::size_t most_rules = std::size_t{1} << 22;

  private:
    friend class RuleFlattening;

    struct Node {
        /// What makes two of them equal: a part, its format, and the configurations of the
        /// arguments that run.
        std::vector<std::uint32_t> key;
        std::uint32_t slot_count = 0;
        std::unique_ptr<FlatRules const> rules{};

        PartNumber part() const noexcept { return key[0]; }
        std::uint32_t format() const noexcept { return key[1]; }
        std::span<ConfigurationNumber const> children() const noexcept {
            return std::span(key).subspan(2);
        }
    };
    struct KeyHash {
        std::size_t operator()(std::vector<std::uint32_t> const& key) const noexcept;
    };

    ConfigurationNumber start_of(PartNumber part);
    /// The configuration of the part in the format over these children; the child alone where the
    /// format lets it through.
    ConfigurationNumber in_format(PartNumber part, std::uint32_t format,
                                  std::vector<ConfigurationNumber> const& children);
    ConfigurationNumber numbered(std::vector<std::uint32_t> key, std::uint32_t slot_count);
    FlatRules component_rules(std::uint32_t component) const;
    void watch_the_stack() const;

    Machine const& m_machine;
    StackGuard const m_stack{};
    std::deque<Node> m_nodes; // by number; stay where they are
    std::unordered_map<std::vector<std::uint32_t>, ConfigurationNumber, KeyHash> m_numbers;
    std::vector<ConfigurationNumber> m_starts; // by part; `none` before the first use
};

} // namespace Calder::StateSpace
