#include "state_space/machine/flatten/flat_rules.h"

#include <algorithm>

namespace Calder::StateSpace {

std::span<FlatRules::Rule const> FlatRules::of_event(unsigned event) const noexcept {
    struct ByEvent {
        bool operator()(Rule const& rule, unsigned wanted) const { return rule.event < wanted; }
        bool operator()(unsigned wanted, Rule const& rule) const { return wanted < rule.event; }
    };
    auto const [first, last] = std::equal_range(rules.begin(), rules.end(), event, ByEvent());
    return {first, last};
}

} // namespace Calder::StateSpace
