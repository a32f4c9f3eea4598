#include "state_space/machine/configurations.h"

#include "state_space/machine/rule_flattening.h"
#include "state_space/mix.h"

#include <algorithm>

namespace Calder::StateSpace {

namespace {

/// The key of a configuration in which nothing runs and nothing can happen; all are one.
std::vector<std::uint32_t> const stopped_key{none, none};

bool is_stopped(HighLevelMachine::UnCompiledFormat const& format) {
    return format.active_components.empty() && format.rules.empty();
}

} // namespace

std::span<FlatRules::Rule const> FlatRules::of_event(unsigned event) const {
    struct ByEvent {
        bool operator()(Rule const& rule, unsigned wanted) const { return rule.event < wanted; }
        bool operator()(unsigned wanted, Rule const& rule) const { return wanted < rule.event; }
    };
    auto const [first, last] = std::equal_range(rules.begin(), rules.end(), event, ByEvent());
    return {first, last};
}

Configurations::Configurations(Machine const& machine)
    : m_machine(machine), m_starts(machine.parts.size(), none) {}

std::vector<std::uint32_t> Configurations::components(ConfigurationNumber number) const {
    std::vector<std::uint32_t> found;
    std::vector<ConfigurationNumber> waiting{number};
    while (!waiting.empty()) {
        Node const& node = m_nodes[waiting.back()];
        waiting.pop_back();
        if (node.part() != none && !m_machine.parts[node.part()].is_construct()) {
            found.push_back(m_machine.parts[node.part()].component);
        }
        waiting.insert(waiting.end(), node.children().rbegin(), node.children().rend());
    }
    return found;
}

FlatRules const& Configurations::rules(ConfigurationNumber number) {
    if (!m_nodes[number].rules) {
        watch_the_stack();
        PartNumber const part = m_nodes[number].part();
        FlatRules made;
        if (part != none && m_machine.parts[part].is_construct()) {
            made = RuleFlattening(*this, number).run();
        } else if (part != none) {
            made = component_rules(m_machine.parts[part].component);
        }
        m_nodes[number].rules = std::make_unique<FlatRules const>(std::move(made));
    }
    return *m_nodes[number].rules;
}

std::size_t
Configurations::KeyHash::operator()(std::vector<std::uint32_t> const& key) const noexcept {
    std::uint64_t hash = key.size();
    for (std::uint32_t const word : key) {
        hash = mix(hash ^ word);
    }
    return hash;
}

ConfigurationNumber Configurations::start_of(PartNumber number) {
    if (m_starts[number] != none) {
        return m_starts[number];
    }
    watch_the_stack();
    Part const& part = m_machine.parts[number];
    if (part.is_construct()) {
        std::vector<ConfigurationNumber> children;
        for (unsigned const argument : part.formats.front().active_components) {
            children.push_back(start_of(part.arguments[argument]));
        }
        m_starts[number] = in_format(number, 0, children);
    } else {
        m_starts[number] = numbered({number, 0}, 1);
    }
    return m_starts[number];
}

ConfigurationNumber Configurations::in_format(PartNumber part, std::uint32_t format,
                                              std::vector<ConfigurationNumber> const& children) {
    if (m_machine.parts[part].passed_through[format] != none) {
        return children.front();
    }
    if (is_stopped(m_machine.parts[part].formats[format])) {
        return numbered(stopped_key, 0);
    }
    std::vector<std::uint32_t> key{part, format};
    key.insert(key.end(), children.begin(), children.end());
    std::uint32_t slots = 0;
    for (ConfigurationNumber const child : children) {
        slots += m_nodes[child].slot_count;
    }
    return numbered(std::move(key), slots);
}

ConfigurationNumber Configurations::numbered(std::vector<std::uint32_t> key,
                                             std::uint32_t slot_count) {
    auto const [place, is_new] =
        m_numbers.try_emplace(key, static_cast<ConfigurationNumber>(m_nodes.size()));
    if (is_new) {
        m_nodes.push_back(Node{std::move(key), slot_count});
    }
    return place->second;
}

FlatRules Configurations::component_rules(std::uint32_t component) const {
    FlatRules flat;
    for (Component::Event const& event : m_machine.components[component]->events()) {
        auto const place = static_cast<std::uint32_t>(flat.participants.size());
        flat.rules.push_back({event.event, none, place, 1, none});
        flat.participants.push_back({0, event.event});
    }
    return flat;
}

void Configurations::watch_the_stack() const {
    if (m_stack.is_low()) {
        throw MachineRefusal("it nests too deeply for the stack");
    }
}

} // namespace Calder::StateSpace
