#pragma once

#include "state_space/machine/flatten/configurations.h"

namespace Calder::StateSpace {

/// The leaf in one slot of a configuration performs an event of its alphabet.
struct Participant {
    /// Member by member.
    bool operator==(Participant const&) const = default;

    /// Counted from left to right, in the configuration that the rule leaves.
    std::uint32_t slot;
    /// What the leaf performs, not the machine.
    unsigned event;
};

/// The rules of a whole configuration, flattened: whoever reads them walks no tree.
struct FlatRules {
    /// One step of the machine, whatever states the other slots are in.
    struct Rule {
        /// What the machine performs.
        unsigned event;
        /// The configuration that it is in afterwards.
        ConfigurationNumber target;
        /// @{
        /// Which of `participants` take part.
        std::uint32_t first_participant;
        std::uint32_t participant_count;
        /// @}
        /// Where the sources of the target's slots begin; `none` when the machine stays in the
        /// configuration and each slot keeps its leaf.
        std::uint32_t first_source;

        /// Whether only the states of the slots that take part change.
        [[nodiscard]] bool stays() const noexcept { return first_source == none; }
    };

    /// A slot of the target whose leaf starts afresh.
    static constexpr std::uint32_t fresh = none;

    /// Ascending by event, those of one event in the order of the constructs' rules, where doubles
    /// side by side count once.
    std::vector<Rule> rules;
    /// Rule after rule.
    std::vector<Participant> participants;
    /// Rule after rule, for each slot of the target: the slot whose state it has, or `fresh`.
    std::vector<std::uint32_t> sources;

    /// All of them must be able to step, each by its event.
    [[nodiscard]] std::span<Participant const> participants_of(Rule const& rule) const noexcept {
        return std::span(participants).subspan(rule.first_participant, rule.participant_count);
    }
    /// Logarithmic in the number of rules.
    [[nodiscard]] std::span<Rule const> of_event(unsigned event) const noexcept;
};

} // namespace Calder::StateSpace
