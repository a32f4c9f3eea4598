#include "pins/vector_machine.h"

#include "pins/group_steps.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>

namespace Calder::Pins {

using StateSpace::ConfigurationTables;
using StateSpace::SearchMonitor;
using StateSpace::Word;

namespace {

std::vector<unsigned> events_of(ColumnRules const& rules) {
    std::vector<unsigned> events;
    for (ColumnRules::Rule const& rule : rules.rules) { // ascending
        if (events.empty() || events.back() != rule.event) {
            events.push_back(rule.event);
        }
    }
    return events;
}

} // namespace

class VectorMachine::Impl {
  public:
    Impl(ConfigurationTables& tables, SearchMonitor& monitor)
        : m_tables(tables), m_sections(tables, most_configurations, monitor),
          m_rules(column_rules(m_sections, StateSpace::Flattening::most_rules, monitor)),
          m_groups(make_groups(m_rules, monitor)), m_events(events_of(m_rules)) {
        describe_columns();
        describe_groups();
        m_steps.emplace(m_rules, m_groups, m_described, m_events, m_value_counts, monitor);
    }

    std::optional<std::vector<Word>> words_of(std::span<int const> state,
                                              SearchMonitor& monitor) const;

    ConfigurationTables& m_tables;
    Sections m_sections;
    ColumnRules m_rules;
    Groups m_groups;
    std::vector<unsigned> m_events;
    std::vector<Column> m_columns;
    std::vector<std::uint32_t> m_value_counts; // by column
    std::vector<Group> m_described;
    std::optional<GroupSteps> m_steps;

  private:
    void describe_columns();
    void describe_groups();
    bool is_in_range(std::span<int const> state) const;
};

void VectorMachine::Impl::describe_columns() {
    std::uint32_t leaves = 0;
    std::uint32_t changing = 0;
    for (Sections::Section const& section : m_sections.sections()) {
        SectionShape const& shape = *section.shape;
        if (shape.changes()) {
            m_columns.push_back(
                {fmt::format("configuration{}", changing++), ColumnKind::configuration});
            m_value_counts.push_back(static_cast<std::uint32_t>(shape.configurations.size()));
        }
        std::size_t const first = m_value_counts.size();
        m_value_counts.resize(first + shape.leaf_columns, 1);
        for (SectionShape::Configuration const& configuration : shape.configurations) {
            for (std::size_t slot = 0; slot < configuration.leaves.size(); ++slot) {
                std::uint32_t& count = m_value_counts[first + configuration.columns[slot]];
                count = std::max(count, configuration.leaves[slot]->state_count());
            }
        }
        for (std::uint32_t column = 0; column < shape.leaf_columns; ++column) {
            m_columns.push_back({fmt::format("leaf{}", leaves++), ColumnKind::leaf});
        }
    }
    if (m_rules.ended_column || m_columns.empty()) { // engines want a column in any case
        m_columns.push_back({"ended", ColumnKind::ended});
        m_value_counts.push_back(2);
    }
}

void VectorMachine::Impl::describe_groups() {
    for (Groups::Group const& group : m_groups.groups) {
        Group described{{}, group.reads, group.writes};
        std::set_union(group.reads.begin(), group.reads.end(), group.writes.begin(),
                       group.writes.end(), std::back_inserter(described.touched));
        m_described.push_back(std::move(described));
    }
}

bool VectorMachine::Impl::is_in_range(std::span<int const> state) const {
    if (state.size() != m_columns.size()) {
        return false;
    }
    for (std::size_t column = 0; column < state.size(); ++column) {
        if (state[column] < 0 ||
            static_cast<std::uint32_t>(state[column]) >= m_value_counts[column]) {
            return false;
        }
    }
    return true;
}

std::optional<std::vector<Word>> VectorMachine::Impl::words_of(std::span<int const> state,
                                                               SearchMonitor& monitor) const {
    if (!is_in_range(state)) {
        return std::nullopt;
    }
    std::vector<std::uint32_t> configurations;
    std::vector<StateSpace::StateNumber> slots;
    for (Sections::Section const& section : m_sections.sections()) {
        SectionShape const& shape = *section.shape;
        auto const number =
            shape.changes() ? static_cast<std::uint32_t>(state[section.first_column]) : 0;
        SectionShape::Configuration const& configuration = shape.configurations[number];
        std::vector<bool> is_used(shape.leaf_columns);
        for (std::size_t slot = 0; slot < configuration.leaves.size(); ++slot) {
            std::uint32_t const column = configuration.columns[slot];
            auto const value =
                static_cast<StateSpace::StateNumber>(state[section.first_leaf_column() + column]);
            if (value >= configuration.leaves[slot]->state_count()) {
                return std::nullopt;
            }
            slots.push_back(value);
            is_used[column] = true;
        }
        for (std::uint32_t column = 0; column < shape.leaf_columns; ++column) {
            if (!is_used[column] && state[section.first_leaf_column() + column] != 0) {
                return std::nullopt;
            }
        }
        configurations.push_back(number);
    }
    StateSpace::ConfigurationNumber const whole = m_sections.whole(configurations);
    m_tables.make_first(monitor);
    if (m_tables.is_static() && whole != m_tables.configurations().start()) {
        return std::nullopt; // the rest of the machine never lets a part of it come there
    }
    m_tables.table(whole, monitor);
    std::vector<Word> words = m_tables.start();
    if (!m_tables.is_static()) {
        words[0] = whole;
    }
    auto const& places = m_tables.layout_of(words.data()).slots();
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        words[places[slot].word] |= Word{slots[slot]} << places[slot].shift;
    }
    return words;
}

VectorMachine::VectorMachine(ConfigurationTables& tables, SearchMonitor& monitor)
    : m_impl(std::make_unique<Impl const>(tables, monitor)) {}

VectorMachine::~VectorMachine() = default;

std::vector<VectorMachine::Column> const& VectorMachine::columns() const noexcept {
    return m_impl->m_columns;
}

std::vector<VectorMachine::Group> const& VectorMachine::groups() const noexcept {
    return m_impl->m_described;
}

std::vector<unsigned> const& VectorMachine::events() const noexcept {
    return m_impl->m_events;
}

std::optional<std::uint32_t> VectorMachine::ended_column() const noexcept {
    return m_impl->m_rules.ended_column;
}

/// Every section is in its first configuration, every leaf in its state 0.
std::vector<int> VectorMachine::start() const {
    return std::vector<int>(m_impl->m_columns.size());
}

int VectorMachine::for_all_steps(int const* state, Scratch& scratch, StepTaker taker) const {
    return m_impl->m_steps->for_all(state, *scratch.m_storage, taker);
}

int VectorMachine::for_steps_of(std::size_t group, int const* state, Scratch& scratch,
                                StepTaker taker) const {
    return m_impl->m_steps->for_group<Form::whole>(group, state, *scratch.m_storage, taker);
}

int VectorMachine::for_short_steps_of(std::size_t group, int const* touched, Scratch& scratch,
                                      StepTaker taker) const {
    return m_impl->m_steps->for_group<Form::touched>(group, touched, *scratch.m_storage, taker);
}

int VectorMachine::for_read_to_written_steps_of(std::size_t group, int const* reads,
                                                Scratch& scratch, StepTaker taker) const {
    return m_impl->m_steps->for_group<Form::read_to_written>(group, reads, *scratch.m_storage,
                                                             taker);
}

std::optional<std::vector<Word>> VectorMachine::words_of(std::span<int const> state,
                                                         SearchMonitor& monitor) const {
    return m_impl->words_of(state, monitor);
}

VectorMachine::Scratch::Scratch() : m_storage(std::make_unique<StepStorage>()) {}

VectorMachine::Scratch::~Scratch() = default;

} // namespace Calder::Pins
