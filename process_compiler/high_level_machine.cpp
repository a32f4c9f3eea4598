#include "process_compiler/high_level_machine.h"

#include <numeric>

namespace Calder::HighLevelMachine {

UnCompiledRule& append_rule(UnCompiledFormat& format, unsigned event, unsigned target_format,
                            std::vector<ComponentEvent> component_events) {
    UnCompiledRule& rule = format.rules.emplace_back();
    rule.event = event;
    rule.target_format = target_format;
    rule.component_events = std::move(component_events);
    return rule;
}

std::vector<ComponentEvent> every_component(unsigned count, unsigned event) {
    std::vector<ComponentEvent> participants;
    participants.reserve(count);
    for (unsigned component = 0; component < count; ++component) {
        participants.emplace_back(std::pair(component, event));
    }
    return participants;
}

void append_joint_rules(UnCompiledFormat& format, unsigned count, BitSet const& events) {
    for (unsigned const event : events) {
        append_rule(format, event, 0, every_component(count, event));
    }
}

void activate_first_components(UnCompiledFormat& format, unsigned count) {
    format.active_components.resize(count);
    std::iota(format.active_components.begin(), format.active_components.end(), 0U);
}

void make_identity_format(std::deque<UnCompiledFormat>& formats, unsigned index,
                          BitSet const& alphabet, unsigned component) {
    UnCompiledFormat& format = formats.at(index);
    format.active_components.assign(1, component);
    format.rules.clear();
    append_argument_rules(format, component, alphabet, [index](unsigned) { return index; });
}

void make_stop_format(std::deque<UnCompiledFormat>& formats, unsigned index) {
    if (index == formats.size()) {
        formats.emplace_back();
        return;
    }
    formats.at(index) = UnCompiledFormat();
}

} // namespace Calder::HighLevelMachine
