#pragma once

#include "state_space/machine/configurations.h"
#include "state_space/machine/successor_table.h"

#include <memory>

namespace Calder::StateSpace {

/// The states of a machine as words, and the tables of their successors, one for each
/// configuration, made when the first state of it is met.
///
/// A machine that never leaves its first configuration has states that are nothing but their slots.
/// In all others the first 32 bits of a state are the number of its configuration.
class MachineStates {
  public:
    /// Throws MachineRefusal when the first configuration has too many rules.
    explicit MachineStates(Machine const& machine);
    MachineStates(MachineStates const&) = delete;
    MachineStates& operator=(MachineStates const&) = delete;

    /// Enough for the words of every configuration met so far and of all that these lead to.
    std::uint32_t width() const noexcept { return m_width; }

    /// The state in which the machine starts, `width` words long.
    std::vector<Word> start() const;

    ConfigurationNumber configuration_of(Word const* state) const noexcept {
        return m_is_static ? m_start : static_cast<ConfigurationNumber>(*state & 0xFFFFFFFF);
    }

    /// The table for the configuration, which is made if it is new; then `width` may have grown.
    /// Tables stay where they are. Throws MachineRefusal.
    SuccessorTable const& table(ConfigurationNumber number) {
        return number < m_tables.size() && m_tables[number] != nullptr ? *m_tables[number]
                                                                       : make_table(number);
    }

    /// The components in the slots of a configuration.
    std::vector<std::uint32_t> components(ConfigurationNumber number) const {
        return m_configurations.components(number);
    }
    std::vector<std::uint32_t> start_components() const { return components(m_start); }
    FlatRules const& rules(ConfigurationNumber number) { return m_configurations.rules(number); }

    /// How many configurations have been met.
    std::size_t met() const noexcept { return m_met; }

  private:
    SuccessorTable const& make_table(ConfigurationNumber number);
    Layout const& layout(ConfigurationNumber number);

    Machine const& m_machine;
    Configurations m_configurations;
    ConfigurationNumber m_start;
    bool m_is_static;
    std::uint32_t m_width = 1;
    std::size_t m_met = 0;
    std::vector<std::unique_ptr<Layout const>> m_layouts;        // by configuration
    std::vector<std::unique_ptr<SuccessorTable const>> m_tables; // by configuration
};

} // namespace Calder::StateSpace
