#pragma once

#include "state_space/export.h"
#include "state_space/machine/flatten/flattening.h"
#include "state_space/machine/run/successor_table.h"

#include <memory>

namespace Calder::StateSpace {

/// The tables of a machine's configurations, by which its states are read and their successors
/// found; each is made when the first state of its configuration is met.
///
/// A machine that never leaves its first configuration has states that are nothing but their slots.
/// In all others the first 32 bits of a state are the number of its configuration.
class CALDER_STATE_SPACE_EXPORT ConfigurationTables {
  public:
    /// Throws MachineRefusal when the machine has no first configuration.
    explicit ConfigurationTables(Machine const& machine);
    ConfigurationTables(ConfigurationTables const&) = delete;
    ConfigurationTables& operator=(ConfigurationTables const&) = delete;

    /// Makes the table of the first configuration, if it was not made; comes before all of the
    /// following but what tells of leaves. Throws what `table` throws.
    void make_first(SearchMonitor& monitor);

    /// Enough for the words of every configuration met so far and of all that these lead to.
    [[nodiscard]] std::uint32_t width() const noexcept { return m_width; }

    /// Whether it never leaves its first configuration.
    [[nodiscard]] bool is_static() const noexcept { return m_is_static; }

    /// The state in which the machine starts, `width` words long.
    [[nodiscard]] std::vector<Word> start() const;

    [[nodiscard]] ConfigurationNumber configuration_of(Word first_word) const noexcept {
        return m_is_static ? m_start : static_cast<ConfigurationNumber>(first_word & 0xFFFFFFFF);
    }
    [[nodiscard]] ConfigurationNumber configuration_of(Word const* state) const noexcept {
        return configuration_of(*state);
    }

    /// The table for the configuration, which is made if it is new; then `width` may have grown.
    /// Tables stay where they are. Throws MachineRefusal, and SearchEnded when the monitor says so.
    SuccessorTable const& table(ConfigurationNumber number, SearchMonitor& monitor) {
        return is_met(number) ? *m_tables[number] : make_table(number, monitor);
    }

    /// Whether its table was made.
    [[nodiscard]] bool is_met(ConfigurationNumber number) const noexcept {
        return number < m_tables.size() && m_tables[number] != nullptr;
    }

    /// Of a configuration that was met.
    [[nodiscard]] SuccessorTable const& table(ConfigurationNumber number) const noexcept {
        return *m_tables[number];
    }
    [[nodiscard]] FlatRules const& rules(ConfigurationNumber number) const noexcept {
        return *m_flattening.known_rules(number);
    }

    /// By which the words of the state are read; its configuration was met, or is led to by one.
    [[nodiscard]] Layout const& layout_of(Word const* state) const noexcept {
        return *m_layouts[configuration_of(state)];
    }
    [[nodiscard]] Configurations const& configurations() const noexcept { return m_configurations; }

    /// @{
    /// For whoever looks at configurations before any state comes to them, or at those of parts: the
    /// configurations, and their flat rules. Throws what `Flattening::rules` throws.
    [[nodiscard]] Configurations& configurations() noexcept { return m_configurations; }
    FlatRules const& make_rules(ConfigurationNumber number, SearchMonitor& monitor) {
        return m_flattening.rules(number, monitor);
    }
    /// @}

    /// The leaves in the slots of a configuration.
    [[nodiscard]] std::vector<std::uint32_t> leaves(ConfigurationNumber number) const {
        return m_configurations.leaves(number);
    }
    [[nodiscard]] std::vector<std::uint32_t> start_leaves() const { return leaves(m_start); }

    /// How many configurations have been met.
    [[nodiscard]] std::size_t met() const noexcept { return m_met; }

  private:
    SuccessorTable const& make_table(ConfigurationNumber number, SearchMonitor& monitor);
    Layout const& layout(ConfigurationNumber number);

    Machine const& m_machine;
    Configurations m_configurations;
    Flattening m_flattening{m_configurations};
    ConfigurationNumber m_start;
    bool m_is_static = false;
    std::uint32_t m_width = 1;
    std::size_t m_met = 0;
    std::vector<std::unique_ptr<Layout const>> m_layouts;        // by configuration
    std::vector<std::unique_ptr<SuccessorTable const>> m_tables; // by configuration
};

} // namespace Calder::StateSpace
