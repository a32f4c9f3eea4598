#pragma once

#include "pins/column_rules.h"

#include <vector>

namespace Calder::Pins {

/// The transitions of a state are a set, but two rules of one event can lead to the same state, and one
/// rule can do so twice: this says which rules have to be watched, and together with which.
struct Repetition {
    /// By rule: one of those that it has to be watched with, the same for all of them; its own number
    /// where no other rule repeats what it does.
    std::vector<std::uint32_t> watched_with;
    /// By rule: it, or another one of those, may repeat a step.
    std::vector<bool> may_repeat;
};

/// Two rules cannot come to the same state from the same state where one of them always changes a
/// column that the other leaves as it is, where they write different numbers, or where they wait for
/// different ones. Everything else is taken to be possible. Pairs are looked at only where a column
/// makes them meet.
[[nodiscard]] Repetition repetition(ColumnRules const& rules, StateSpace::SearchMonitor& monitor);

} // namespace Calder::Pins
