#include "state_space/machine/run/configuration_tables.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

constexpr unsigned configuration_bits = 32;

bool every_rule_stays(FlatRules const& rules) {
    return std::all_of(rules.rules.begin(), rules.rules.end(),
                       [](FlatRules::Rule const& rule) { return rule.stays(); });
}

} // namespace

ConfigurationTables::ConfigurationTables(Machine const& machine)
    : m_machine(machine), m_configurations(machine), m_start(m_configurations.start()) {}

void ConfigurationTables::make_first(SearchMonitor& monitor) {
    m_is_static = every_rule_stays(m_flattening.rules(m_start, monitor));
    table(m_start, monitor);
}

std::vector<Word> ConfigurationTables::start() const {
    std::vector<Word> words(m_width);
    words[0] = m_is_static ? 0 : m_start; // every leaf in its state 0
    return words;
}

SuccessorTable const& ConfigurationTables::make_table(ConfigurationNumber number,
                                                      SearchMonitor& monitor) {
    FlatRules const& flat = m_flattening.rules(number, monitor);
    monitor.go_on(flat.rules.size(), flat.rules.size() * sizeof(SuccessorTable::Target));
    std::vector<SuccessorTable::Target> targets;
    targets.reserve(flat.rules.size());
    for (FlatRules::Rule const& rule : flat.rules) {
        targets.push_back(rule.stays() ? SuccessorTable::Target{nullptr, number}
                                       : SuccessorTable::Target{&layout(rule.target), rule.target});
    }
    Layout const& own = layout(number);
    if (m_tables.size() <= number) {
        m_tables.resize(std::size_t{number} + 1);
    }
    m_tables[number] =
        std::make_unique<SuccessorTable const>(own, flat, std::move(targets), monitor);
    ++m_met;
    return *m_tables[number];
}

Layout const& ConfigurationTables::layout(ConfigurationNumber number) {
    if (m_layouts.size() <= number) {
        m_layouts.resize(std::size_t{number} + 1);
    }
    if (!m_layouts[number]) {
        std::vector<Leaf const*> leaves;
        for (std::uint32_t const leaf : m_configurations.leaves(number)) {
            leaves.push_back(m_machine.leaves[leaf].get());
        }
        m_layouts[number] =
            std::make_unique<Layout const>(leaves, m_is_static ? 0 : configuration_bits);
        m_width = std::max(m_width, m_layouts[number]->word_count());
    }
    return *m_layouts[number];
}

} // namespace Calder::StateSpace
