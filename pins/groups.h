#pragma once

#include "pins/column_rules.h"

#include <vector>

namespace Calder::Pins {

/// The transition groups of a machine: rules that wait for the same columns and write the same ones,
/// and those that may repeat each other's steps.
struct Groups {
    /// Columns ascend.
    struct Group {
        /// On whose values it depends what happens.
        std::vector<std::uint32_t> reads;
        /// Which every rule of the group writes.
        std::vector<std::uint32_t> writes;
        /// By number, ascending.
        std::vector<std::uint32_t> rules;
    };

    /// Ascending by the columns that they touch: what happens side by side stands side by side, for tables
    /// as for decision diagrams.
    std::vector<Group> groups;
    /// By rule: whether it must be watched for steps that it or another one of its group repeats.
    std::vector<bool> may_repeat;
};

/// Completes the rules: one that leaves a column as it is which others of its group write then writes
/// what stands there.
[[nodiscard]] Groups make_groups(ColumnRules& rules, StateSpace::SearchMonitor& monitor);

} // namespace Calder::Pins
