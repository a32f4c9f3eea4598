#include "state_space/machine/machine_states.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

constexpr unsigned configuration_bits = 32;

bool every_rule_stays(FlatRules const& rules) {
    return std::all_of(rules.rules.begin(), rules.rules.end(),
                       [](FlatRules::Rule const& rule) { return rule.stays(); });
}

} // namespace

MachineStates::MachineStates(Machine const& machine)
    : m_machine(machine), m_configurations(machine), m_start(m_configurations.start()),
      m_is_static(every_rule_stays(m_configurations.rules(m_start))) {
    table(m_start);
}

std::vector<Word> MachineStates::start() const {
    std::vector<Word> words(m_width);
    words[0] = m_is_static ? 0 : m_start; // every component in its state 0
    return words;
}

SuccessorTable const& MachineStates::make_table(ConfigurationNumber number) {
    FlatRules const& flat = m_configurations.rules(number);
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
    m_tables[number] = std::make_unique<SuccessorTable const>(own, flat, std::move(targets));
    ++m_met;
    return *m_tables[number];
}

Layout const& MachineStates::layout(ConfigurationNumber number) {
    if (m_layouts.size() <= number) {
        m_layouts.resize(std::size_t{number} + 1);
    }
    if (!m_layouts[number]) {
        std::vector<Component const*> components;
        for (std::uint32_t const component : m_configurations.components(number)) {
            components.push_back(m_machine.components[component].get());
        }
        m_layouts[number] =
            std::make_unique<Layout const>(components, m_is_static ? 0 : configuration_bits);
        m_width = std::max(m_width, m_layouts[number]->word_count());
    }
    return *m_layouts[number];
}

} // namespace Calder::StateSpace
