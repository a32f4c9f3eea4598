#pragma once

#include "pins/sections.h"

#include <optional>
#include <span>
#include <vector>

namespace Calder::Pins {

/// The rules of a machine over columns: what must stand in them, and what stands there afterwards.
struct ColumnRules {
    /// A number that must stand in a column: the configuration of a section.
    struct Condition {
        /// Member by member.
        bool operator==(Condition const&) const = default;

        std::uint32_t column;
        std::uint32_t value;
    };

    /// A leaf performs an event, from the state that stands in a column.
    struct Taker {
        /// Member by member.
        bool operator==(Taker const&) const = default;

        /// `none` where it does not matter what stands there: the leaf does it in every state, and
        /// comes to the same from all.
        std::uint32_t column;
        StateSpace::Leaf const* leaf;
        /// Among the leaf's.
        std::uint32_t event_index;
    };

    enum class Source {
        /// The number itself.
        constant,
        /// The state that the taker comes to: its place among the rule's.
        taker,
        /// What stood in a column before.
        column,
    };

    struct Write {
        /// Member by member.
        bool operator==(Write const&) const = default;

        std::uint32_t column;
        Source source;
        /// As the source says.
        std::uint32_t value;
    };

    /// Places in a list.
    struct Range {
        std::uint32_t first;
        std::uint32_t last;
    };

    struct Rule {
        /// What the machine performs.
        unsigned event;
        Range conditions;
        Range takers;
        Range writes;
    };

    [[nodiscard]] std::span<Condition const> conditions_of(Rule const& rule) const noexcept {
        return std::span(conditions).subspan(rule.conditions.first, size(rule.conditions));
    }
    [[nodiscard]] std::span<Taker const> takers_of(Rule const& rule) const noexcept {
        return std::span(takers).subspan(rule.takers.first, size(rule.takers));
    }
    /// Ascending by column.
    [[nodiscard]] std::span<Write const> writes_of(Rule const& rule) const noexcept {
        return std::span(writes).subspan(rule.writes.first, size(rule.writes));
    }
    /// Adds one at its place. The list grows: what was had of it before is no longer good.
    void add_write(Rule& rule, Write write);

    static std::size_t size(Range range) noexcept { return range.last - range.first; }

    /// Ascending by event. None is there twice.
    std::vector<Rule> rules;
    std::vector<Condition> conditions;
    std::vector<Taker> takers;
    std::vector<Write> writes;
    /// The column behind those of the sections that tells whether the last step was a tick; nothing
    /// where no rule is one. Only a rule that may follow a tick at once sets it back.
    std::optional<std::uint32_t> ended_column;
};

/// One for each rule of the frame and each choice of a rule for every section that takes part. Throws
/// MachineRefusal when there are more than `most_rules`, and SearchEnded when the monitor ends it.
[[nodiscard]] ColumnRules column_rules(Sections const& sections, std::size_t most_rules,
                                       StateSpace::SearchMonitor& monitor);

} // namespace Calder::Pins
