#include "state_space/machine/rule_flattening.h"

#include "process_compiler/event_numbers.h"

#include <algorithm>
#include <numeric>

namespace Calder::StateSpace {

using HighLevelMachine::ComponentEvent;
using ProcessCompiler::no_event;

RuleFlattening::RuleFlattening(Configurations& configurations, ConfigurationNumber number)
    : m_configurations(configurations), m_number(number),
      m_part_number(configurations.m_nodes[number].part()),
      m_part(configurations.m_machine.parts[m_part_number]),
      m_format_number(configurations.m_nodes[number].format()),
      m_format(m_part.formats[m_format_number]) {
    std::uint32_t slot = 0;
    for (ConfigurationNumber const child : configurations.m_nodes[number].children()) {
        m_children.push_back({child, &configurations.rules(child), slot});
        slot += configurations.slot_count(child);
    }
    m_taker_of.assign(m_children.size(), none);
}

FlatRules RuleFlattening::run() {
    for (FormatRule const& rule : m_format.rules) {
        if (find_takers(rule)) {
            do {
                add(rule);
            } while (choose_next());
        }
        for (Taker const& taker : m_takers) {
            m_taker_of[taker.child] = none;
        }
        m_takers.clear();
    }
    return sorted();
}

/// False when one of those who are to take part does not run, or cannot.
bool RuleFlattening::find_takers(FormatRule const& rule) {
    for (ComponentEvent const& participant : rule.component_events) {
        if (participant.event == no_event) {
            continue; // named without taking part
        }
        std::uint32_t const child = place_of(participant.component, m_format.active_components);
        if (child == none) {
            return false;
        }
        auto const options = m_children[child].rules->of_event(participant.event);
        if (options.empty()) {
            return false;
        }
        m_taker_of[child] = static_cast<std::uint32_t>(m_takers.size());
        m_takers.push_back({child, options, 0});
    }
    return true;
}

/// The next combination of what the takers do, the last one's choice changing fastest.
bool RuleFlattening::choose_next() {
    for (auto taker = m_takers.rbegin(); taker != m_takers.rend(); ++taker) {
        if (++taker->chosen < taker->options.size()) {
            return true;
        }
        taker->chosen = 0;
    }
    return false;
}

void RuleFlattening::add(FormatRule const& rule) {
    if (m_flat.rules.size() >= Configurations::most_rules) {
        throw MachineRefusal("it has too many rules");
    }
    auto const first = static_cast<std::uint32_t>(m_flat.participants.size());
    add_participants();
    auto const count = static_cast<std::uint32_t>(m_flat.participants.size()) - first;
    FlatRules::Rule flat{rule.event, m_number, first, count, none};
    if (rule.target_format != m_format_number || !every_taker_stays()) {
        add_target(rule, flat);
    }
    m_flat.rules.push_back(flat);
}

void RuleFlattening::add_participants() {
    for (Taker const& taker : m_takers) {
        Child const& child = m_children[taker.child];
        for (Participant const& inner : child.rules->participants_of(taker.options[taker.chosen])) {
            m_flat.participants.push_back({inner.slot + child.first_slot, inner.event});
        }
    }
}

bool RuleFlattening::every_taker_stays() const {
    return std::all_of(m_takers.begin(), m_takers.end(),
                       [](Taker const& taker) { return taker.options[taker.chosen].stays(); });
}

/// The configuration that the rule leads to, and where the states of its slots come from: from the
/// slots of the same argument, stepped or not, or from the start of an argument that did not run.
void RuleFlattening::add_target(FormatRule const& rule, FlatRules::Rule& flat) {
    flat.first_source = static_cast<std::uint32_t>(m_flat.sources.size());
    std::vector<ConfigurationNumber> children;
    for (unsigned const argument : m_part.formats[rule.target_format].active_components) {
        std::uint32_t const child = place_of(argument, m_format.active_components);
        if (child != none) {
            children.push_back(add_sources_of_child(child));
        } else {
            children.push_back(m_configurations.start_of(m_part.arguments[argument]));
            m_flat.sources.resize(m_flat.sources.size() +
                                      m_configurations.slot_count(children.back()),
                                  FlatRules::fresh);
        }
    }
    flat.target = m_configurations.in_format(m_part_number, rule.target_format, children);
}

/// Returns the configuration that the child is in afterwards.
ConfigurationNumber RuleFlattening::add_sources_of_child(std::uint32_t number) {
    Child const& child = m_children[number];
    Taker const* const taker = m_taker_of[number] == none ? nullptr : &m_takers[m_taker_of[number]];
    if (taker == nullptr || taker->options[taker->chosen].stays()) {
        std::size_t const before = m_flat.sources.size();
        m_flat.sources.resize(before + m_configurations.slot_count(child.number));
        std::iota(m_flat.sources.begin() + static_cast<std::ptrdiff_t>(before),
                  m_flat.sources.end(), child.first_slot);
        return child.number;
    }
    FlatRules::Rule const& inner = taker->options[taker->chosen];
    for (std::uint32_t slot = 0; slot < m_configurations.slot_count(inner.target); ++slot) {
        std::uint32_t const source = child.rules->sources[inner.first_source + slot];
        m_flat.sources.push_back(source == FlatRules::fresh ? source : source + child.first_slot);
    }
    return inner.target;
}

/// Where the argument stands among those that run; `none` when it does not.
std::uint32_t RuleFlattening::place_of(unsigned argument, std::vector<unsigned> const& active) {
    if (argument < active.size() && active[argument] == argument) {
        return argument; // all run, as mostly
    }
    auto const found = std::find(active.begin(), active.end(), argument);
    return found == active.end() ? none : static_cast<std::uint32_t>(found - active.begin());
}

/// By event. Some constructs list a rule twice: where the two meet, one goes. Others may stay, as
/// the transitions of a state are a set in any case.
FlatRules RuleFlattening::sorted() const {
    auto const same = [this](FlatRules::Rule const& left, FlatRules::Rule const& right) {
        auto const left_participants = m_flat.participants_of(left);
        auto const right_participants = m_flat.participants_of(right);
        auto const source = [this](FlatRules::Rule const& rule) {
            return m_flat.sources.begin() + static_cast<std::ptrdiff_t>(rule.first_source);
        };
        return left.event == right.event && left.target == right.target &&
               left.stays() == right.stays() &&
               std::equal(left_participants.begin(), left_participants.end(),
                          right_participants.begin(), right_participants.end()) &&
               (left.stays() ||
                std::equal(source(left), source(left) + m_configurations.slot_count(left.target),
                           source(right)));
    };
    FlatRules result = m_flat;
    std::stable_sort(result.rules.begin(), result.rules.end(),
                     [](FlatRules::Rule const& left, FlatRules::Rule const& right) {
                         return left.event < right.event;
                     });
    result.rules.erase(std::unique(result.rules.begin(), result.rules.end(), same),
                       result.rules.end());
    return result;
}

} // namespace Calder::StateSpace
