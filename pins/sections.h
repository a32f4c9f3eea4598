#pragma once

#include "state_space/machine/run/configuration_tables.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace Calder::Pins {

/// The configurations of one part of a machine, numbered by themselves: what is started in is 0, the
/// others follow breadth-first, in the order of the rules. A leaf has one.
///
/// Every leaf that runs in one of them has a column of its own there, and keeps it from configuration
/// to configuration as far as that can be: then a step that changes the formats leaves alone whom it
/// does not concern.
struct SectionShape {
    struct Configuration {
        StateSpace::ConfigurationNumber number;
        StateSpace::FlatRules const* rules;
        /// The leaves that run, by slot.
        std::vector<StateSpace::Leaf const*> leaves;
        /// Theirs, by slot, counted among the section's columns of leaves.
        std::vector<std::uint32_t> columns;
    };

    [[nodiscard]] bool changes() const noexcept { return configurations.size() > 1; }

    /// By number.
    std::vector<Configuration> configurations;
    /// By the machine's own numbers: where they stand.
    std::unordered_map<StateSpace::ConfigurationNumber, std::uint32_t> numbers;
    /// How many leaves run at a time at most, and more where one would have to change its column.
    std::uint32_t leaf_columns = 0;
};

/// A machine as a network of parts that never changes: the constructs that stay in their formats are
/// its frame, and each leaf or construct below that can leave its format is a section, with
/// configurations of its own. So configurations add up where they would be multiplied if they were
/// those of the whole machine.
class Sections {
  public:
    struct Section {
        SectionShape const* shape;
        /// Of its configuration where it changes; then, or otherwise from here on, its leaves.
        std::uint32_t first_column;

        [[nodiscard]] std::uint32_t first_leaf_column() const noexcept {
            return first_column + (shape->changes() ? 1 : 0);
        }
    };

    /// Throws MachineRefusal where a section has more than `most_configurations`, and what
    /// `Flattening::rules` throws.
    Sections(StateSpace::ConfigurationTables& tables, std::size_t most_configurations,
             StateSpace::SearchMonitor& monitor);
    Sections(Sections const&) = delete;
    Sections& operator=(Sections const&) = delete;

    /// From left to right.
    [[nodiscard]] std::vector<Section> const& sections() const noexcept { return m_sections; }
    /// Of all sections.
    [[nodiscard]] std::uint32_t column_count() const noexcept { return m_column_count; }
    /// The rules of the frame: the slots of the participants are sections, their events those of the
    /// sections' rules.
    [[nodiscard]] StateSpace::FlatRules const& frame() const noexcept { return *m_rules; }

    /// The configuration of the whole machine in which the sections are in these, by number among
    /// their own. Throws MachineRefusal when the tree is too deep for the stack.
    [[nodiscard]] StateSpace::ConfigurationNumber
    whole(std::vector<std::uint32_t> const& configurations) const;

  private:
    void find_sections(StateSpace::ConfigurationNumber tree,
                       std::vector<StateSpace::PartNumber>& parts);
    [[nodiscard]] bool stays(StateSpace::ConfigurationNumber tree) const;
    void make_frame(std::vector<StateSpace::PartNumber> const& parts,
                    StateSpace::SearchMonitor& monitor);
    void enumerate(StateSpace::PartNumber part, std::size_t most_configurations,
                   StateSpace::SearchMonitor& monitor);
    StateSpace::ConfigurationNumber whole(StateSpace::ConfigurationNumber tree,
                                          std::vector<std::uint32_t> const& configurations,
                                          std::size_t& next) const;

    StateSpace::ConfigurationTables& m_tables;
    StateSpace::Configurations& m_configurations;
    StateSpace::StackGuard const m_stack{};
    std::vector<std::unique_ptr<SectionShape>> m_shapes; // by part; null of all that is no section
    std::vector<Section> m_sections;
    std::uint32_t m_column_count = 0;
    StateSpace::Machine
        m_frame; // each section a leaf of one state, which can do all that the part can
    StateSpace::FlatRules const* m_rules = nullptr;
    std::unique_ptr<StateSpace::Configurations> m_frame_configurations;
    std::unique_ptr<StateSpace::Flattening> m_frame_flattening;
};

} // namespace Calder::Pins
