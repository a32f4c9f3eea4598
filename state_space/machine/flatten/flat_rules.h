#pragma once

#include "state_space/machine/flatten/configurations.h"

namespace Calder::StateSpace {

/// The leaf in one slot of a configuration performs an event of its alphabet.
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
        /// configuration and each slot keeps its leaf.
        std::uint32_t first_source;

        [[nodiscard]] bool stays() const noexcept { return first_source == none; }
    };

    /// A slot of the target whose leaf starts afresh.
    static constexpr std::uint32_t fresh = none;

    /// Ascending by event, those of one event in the order of the constructs' rules, where doubles
    /// side by side count once.
    std::vector<Rule> rules;
    std::vector<Participant> participants; // rule after rule
    std::vector<std::uint32_t> sources; // rule after rule: for each slot of the target, whose state

    [[nodiscard]] std::span<Participant const> participants_of(Rule const& rule) const noexcept {
        return std::span(participants).subspan(rule.first_participant, rule.participant_count);
    }
    [[nodiscard]] std::span<Rule const> of_event(unsigned event) const noexcept;
};

} // namespace Calder::StateSpace
