#include "state_space/machine/flatten/configurations.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/mix.h"

namespace Calder::StateSpace {

namespace {

/// The key of a configuration in which nothing runs and nothing can happen; all are one.
std::vector<std::uint32_t> const stopped_key{none, none};

bool is_stopped(HighLevelMachine::UnCompiledFormat const& format) {
    return format.active_components.empty() && format.rules.empty();
}

} // namespace

Configurations::Configurations(Machine const& machine)
    : m_machine(machine), m_starts(machine.parts.size(), none) {}

ConfigurationNumber Configurations::start_of(PartNumber number) {
    if (m_starts[number] != none) {
        return m_starts[number];
    }
    refuse_if_low(m_stack);
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
    std::uint64_t slots = 0;
    for (ConfigurationNumber const child : children) {
        slots += slot_count(child);
    }
    if (slots > most_slots) {
        throw MachineRefusal("it has too many components");
    }
    return numbered(std::move(key), static_cast<std::uint32_t>(slots));
}

std::vector<std::uint32_t> Configurations::leaves(ConfigurationNumber number) const {
    std::vector<std::uint32_t> found;
    std::vector<ConfigurationNumber> waiting{number};
    while (!waiting.empty()) {
        ConfigurationNumber const tree = waiting.back();
        waiting.pop_back();
        if (part(tree) != none && !m_machine.parts[part(tree)].is_construct()) {
            found.push_back(m_machine.parts[part(tree)].leaf);
        }
        waiting.insert(waiting.end(), children(tree).rbegin(), children(tree).rend());
    }
    return found;
}

std::size_t
Configurations::KeyHash::operator()(std::vector<std::uint32_t> const& key) const noexcept {
    std::uint64_t hash = key.size();
    for (std::uint32_t const word : key) {
        hash = mix(hash ^ word);
    }
    return hash;
}

ConfigurationNumber Configurations::numbered(std::vector<std::uint32_t> key,
                                             std::uint32_t slot_count) {
    auto const [place, is_new] =
        m_numbers.try_emplace(key, static_cast<ConfigurationNumber>(m_trees.size()));
    if (is_new) {
        m_trees.push_back(Tree{std::move(key), slot_count});
    }
    return place->second;
}

} // namespace Calder::StateSpace
