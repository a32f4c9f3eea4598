#pragma once

#include "state_space/machine/flatten/flat_rules.h"
#include "state_space/search_monitor.h"

#include <memory>

namespace Calder::StateSpace {

/// The flat rules of configurations: each rule of the format at the root, with each choice of a
/// rule of its own for every argument that takes part. They name the configurations that they lead
/// to, which numbers these but does not flatten them.
class Flattening {
  public:
    explicit Flattening(Configurations& configurations) : m_configurations(configurations) {}
    Flattening(Flattening const&) = delete;
    Flattening& operator=(Flattening const&) = delete;

    /// Made on first use, from those of the configuration's subtrees, which are kept as well. The
    /// reference stays good. Throws MachineRefusal when there are more rules than `most_rules`, or
    /// when the tree is too deep for the stack; SearchEnded when the monitor ends it.
    FlatRules const& rules(ConfigurationNumber number, SearchMonitor& monitor);

    /// Null when they were not made.
    [[nodiscard]] FlatRules const* known_rules(ConfigurationNumber number) const noexcept {
        return number < m_rules.size() ? m_rules[number].get() : nullptr;
    }

    static constexpr std::size_t most_rules = std::size_t{1} << 22;

  private:
    FlatRules flatten(ConfigurationNumber number, SearchMonitor& monitor);

    Configurations& m_configurations;
    StackGuard const m_stack{};
    std::vector<std::unique_ptr<FlatRules const>> m_rules; // by configuration
};

} // namespace Calder::StateSpace
