#include "pins/sections.h"

#include "state_space/lts_builder.h"
#include "state_space/machine/machine_refusal.h"

#include <fmt/core.h>

#include <algorithm>

namespace Calder::Pins {

using StateSpace::ConfigurationNumber;
using StateSpace::FlatRules;
using StateSpace::Leaf;
using StateSpace::Machine;
using StateSpace::none;
using StateSpace::Part;
using StateSpace::PartNumber;
using StateSpace::SearchMonitor;

namespace {

/// Of the rules of all configurations of a section, their participants and sources included. A part that
/// grows at each step would have 4096 configurations only when it has some gigabytes of them.
constexpr std::size_t most_entries = std::size_t{1} << 22;

/// Stands for a section in the frame: it can always do all that the part ever can.
std::unique_ptr<Leaf const> stand_in(Part const& part) {
    StateSpace::LtsBuilder builder;
    for (unsigned const event : part.alphabet) {
        builder.add_new(event, 0);
    }
    builder.end_row();
    return std::make_unique<Leaf const>(part.term, builder.finish(1));
}

/// Gives the leaves of a configuration their columns.
class Columns {
  public:
    explicit Columns(SectionShape& shape) : m_shape(shape) {}

    /// Of the start, or of a configuration to which a rule leads: who came along stays where it is.
    /// Who starts afresh gets a column in which the same leaf ran before, or else the first free one.
    void place(SectionShape::Configuration& placed, SectionShape::Configuration const* before,
               std::uint32_t const* sources) {
        std::vector<bool> is_taken(m_leaf_of.size());
        placed.columns.assign(placed.leaves.size(), none);
        for (std::size_t slot = 0; sources != nullptr && slot < placed.leaves.size(); ++slot) {
            if (sources[slot] == FlatRules::fresh) {
                continue;
            }
            std::uint32_t const column = before->columns[sources[slot]];
            if (!is_taken[column]) { // two that came from one place would share it otherwise
                take(placed, slot, column, is_taken);
            }
        }
        for (std::size_t slot = 0; slot < placed.leaves.size(); ++slot) {
            if (placed.columns[slot] == none) {
                take(placed, slot, free_column(placed.leaves[slot], is_taken), is_taken);
            }
        }
        m_shape.leaf_columns = static_cast<std::uint32_t>(m_leaf_of.size());
    }

  private:
    void take(SectionShape::Configuration& placed, std::size_t slot, std::uint32_t column,
              std::vector<bool>& is_taken) {
        if (column == m_leaf_of.size()) {
            m_leaf_of.push_back(nullptr);
            is_taken.push_back(false);
        }
        m_leaf_of[column] = placed.leaves[slot];
        is_taken[column] = true;
        placed.columns[slot] = column;
    }

    std::uint32_t free_column(Leaf const* leaf, std::vector<bool> const& is_taken) const {
        std::size_t first_free = m_leaf_of.size();
        for (std::size_t column = m_leaf_of.size(); column-- > 0;) {
            if (!is_taken[column]) {
                first_free = column;
            }
        }
        for (std::size_t column = 0; column < m_leaf_of.size(); ++column) {
            if (!is_taken[column] && m_leaf_of[column] == leaf) {
                return static_cast<std::uint32_t>(column);
            }
        }
        return static_cast<std::uint32_t>(first_free);
    }

    SectionShape& m_shape;
    std::vector<Leaf const*> m_leaf_of; // by column: that ran there last
};

} // namespace

Sections::Sections(StateSpace::ConfigurationTables& tables, std::size_t most_configurations,
                   SearchMonitor& monitor)
    : m_tables(tables), m_configurations(tables.configurations()),
      m_shapes(m_configurations.machine().parts.size()) {
    std::vector<PartNumber> parts;
    find_sections(m_configurations.start(), parts);
    make_frame(parts, monitor);
    for (PartNumber const part : parts) {
        SectionShape const& shape = *m_shapes[part];
        if (shape.configurations.empty()) {
            enumerate(part, most_configurations, monitor);
        }
        m_sections.push_back({&shape, m_column_count});
        m_column_count += shape.leaf_columns + (shape.changes() ? 1 : 0);
    }
}

/// From left to right, the parts at which the frame ends.
void Sections::find_sections(ConfigurationNumber tree, std::vector<PartNumber>& parts) {
    StateSpace::refuse_if_low(m_stack);
    PartNumber const part = m_configurations.part(tree);
    if (part == none) {
        return;
    }
    if (!m_configurations.machine().parts[part].is_construct() || !stays(tree)) {
        parts.push_back(part);
        return;
    }
    for (ConfigurationNumber const child : m_configurations.children(tree)) {
        find_sections(child, parts);
    }
}

/// Whether no rule that can fire leads the construct at the root to another format.
bool Sections::stays(ConfigurationNumber tree) const {
    Machine const& machine = m_configurations.machine();
    Part const& part = machine.parts[m_configurations.part(tree)];
    std::uint32_t const number = m_configurations.format(tree);
    auto const& format = part.formats[number];
    std::vector<BitSet> alphabets;
    for (PartNumber const argument : part.arguments) {
        alphabets.push_back(machine.parts[argument].alphabet);
    }
    return std::all_of(format.rules.begin(), format.rules.end(), [&](auto const& rule) {
        return rule.target_format == number || !StateSpace::can_fire(rule, format, alphabets);
    });
}

void Sections::make_frame(std::vector<PartNumber> const& parts, SearchMonitor& monitor) {
    Machine const& machine = m_configurations.machine();
    m_frame.start = machine.start;
    m_frame.parts = machine.parts;
    for (PartNumber const part : parts) {
        if (!m_shapes[part]) {
            m_shapes[part] = std::make_unique<SectionShape>();
            m_frame.parts[part].leaf = static_cast<std::uint32_t>(m_frame.leaves.size());
            m_frame.leaves.push_back(stand_in(machine.parts[part]));
        }
    }
    m_frame_configurations = std::make_unique<StateSpace::Configurations>(m_frame);
    m_frame_flattening = std::make_unique<StateSpace::Flattening>(*m_frame_configurations);
    m_rules = &m_frame_flattening->rules(m_frame_configurations->start(), monitor);
}

/// All that the part comes to by itself, whatever the rest of the machine lets it do.
void Sections::enumerate(PartNumber part, std::size_t most_configurations, SearchMonitor& monitor) {
    SectionShape& shape = *m_shapes[part];
    Columns columns(shape);
    std::unordered_map<ConfigurationNumber, std::uint32_t>& numbers = shape.numbers;
    std::size_t entries = 0;
    auto const meet = [&](ConfigurationNumber number, std::uint32_t before,
                          std::uint32_t const* sources) {
        if (!numbers.try_emplace(number, shape.configurations.size()).second) {
            return;
        }
        if (shape.configurations.size() == most_configurations) {
            throw StateSpace::MachineRefusal(
                fmt::format("a part of it has more than {} configurations", most_configurations));
        }
        FlatRules const& rules = m_tables.make_rules(number, monitor);
        entries += rules.rules.size() + rules.participants.size() + rules.sources.size();
        if (entries > most_entries) {
            throw StateSpace::MachineRefusal(
                "the configurations of a part of it have too many rules");
        }
        SectionShape::Configuration met{number, &rules, {}, {}};
        for (std::uint32_t const leaf : m_configurations.leaves(number)) {
            met.leaves.push_back(m_configurations.machine().leaves[leaf].get());
        }
        columns.place(met, sources == nullptr ? nullptr : &shape.configurations[before], sources);
        shape.configurations.push_back(std::move(met));
    };
    meet(m_configurations.start_of(part), 0, nullptr);
    for (std::uint32_t number = 0; number < shape.configurations.size(); ++number) {
        FlatRules const& rules = *shape.configurations[number].rules;
        monitor.go_on(rules.rules.size());
        for (FlatRules::Rule const& rule : rules.rules) {
            if (!rule.stays()) {
                meet(rule.target, number, rules.sources.data() + rule.first_source);
            }
        }
    }
}

ConfigurationNumber Sections::whole(std::vector<std::uint32_t> const& configurations) const {
    std::size_t next = 0;
    return whole(m_configurations.start(), configurations, next);
}

ConfigurationNumber Sections::whole(ConfigurationNumber tree,
                                    std::vector<std::uint32_t> const& configurations,
                                    std::size_t& next) const {
    StateSpace::refuse_if_low(m_stack);
    PartNumber const part = m_configurations.part(tree);
    if (part == none) {
        return tree;
    }
    if (m_shapes[part]) {
        SectionShape const& shape = *m_sections[next].shape;
        return shape.configurations[configurations[next++]].number;
    }
    std::vector<ConfigurationNumber> children;
    for (ConfigurationNumber const child : m_configurations.children(tree)) {
        children.push_back(whole(child, configurations, next));
    }
    return m_configurations.in_format(part, m_configurations.format(tree), children);
}

} // namespace Calder::Pins
