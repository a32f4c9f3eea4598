#pragma once

#include "core/bit_set.h"
#include "process_compiler/export.h"

#include <concepts>
#include <deque>
#include <type_traits>
#include <utility>
#include <vector>

/// The second description that a construct gives of itself: a machine of a few formats, each saying
/// which arguments run and by which rules the machine moves from format to format.
namespace Calder::HighLevelMachine {

/// One participant of a rule: the argument `component` performs `event`. Event number 0 means that
/// the argument is named without taking part.
struct ComponentEvent {
    /// From (argument index, event number); an index may be a literal or a computed number.
    template <std::integral Index> ComponentEvent(std::pair<Index, unsigned> participant)
        : component(static_cast<unsigned>(participant.first)), event(participant.second) {}

    /// Member by member.
    bool operator==(ComponentEvent const&) const = default;

    /// The index of the argument.
    unsigned component;
    /// What the argument performs, not the whole machine.
    unsigned event;
};

/// One way to leave a format or to stay in it.
struct UnCompiledRule {
    /// Member by member, the participants in their order.
    bool operator==(UnCompiledRule const&) const = default;

    /// What the whole machine performs.
    unsigned event = 0;
    /// The format that the machine is in afterwards.
    unsigned target_format = 0;
    /// The arguments that take part, each with its own event.
    std::vector<ComponentEvent> component_events;
    /// A second list of components; empty in every rule of the present constructs.
    std::vector<unsigned> extra_components;
};

/// One state kind of the machine; format 0 is where it starts.
struct UnCompiledFormat {
    /// Member by member, the rules in their order.
    bool operator==(UnCompiledFormat const&) const = default;

    /// In the construct's own order, which decides among those of one event.
    std::deque<UnCompiledRule> rules;
    /// The arguments that run while the machine is in this format.
    std::vector<unsigned> active_components;
};

/// Appends to `format` the rule: the machine performs `event` and moves to `target_format` while
/// the given arguments take part. Returns the rule, to which more participants may be added.
CALDER_PROCESS_COMPILER_EXPORT UnCompiledRule&
append_rule(UnCompiledFormat& format, unsigned event, unsigned target_format,
            std::vector<ComponentEvent> component_events = {});

/// What the machine does while one of its arguments performs an event.
struct Move {
    /// What the whole machine performs.
    unsigned event;
    /// The format that the machine is in afterwards.
    unsigned target_format;
};

/// Appends to `format` the rules of an argument that moves alone: for each event of `alphabet`,
/// ascending, the one by which `component` performs it. `answer(event)` is the Move that the
/// machine makes, or only its target format where the machine performs the same event.
template <std::invocable<unsigned> Answer>
void append_argument_rules(UnCompiledFormat& format, unsigned component, BitSet const& alphabet,
                           Answer const& answer) {
    for (unsigned const event : alphabet) {
        Move move{};
        if constexpr (std::same_as<std::invoke_result_t<Answer const&, unsigned>, Move>) {
            move = answer(event);
        } else {
            move = {event, answer(event)};
        }
        append_rule(format, move.event, move.target_format, {std::pair(component, event)});
    }
}

/// Arguments 0 to `count` - 1, all performing `event`.
CALDER_PROCESS_COMPILER_EXPORT std::vector<ComponentEvent> every_component(unsigned count,
                                                                           unsigned event);

/// Appends to `format`, to which they lead back as format 0, the rules of events that arguments 0
/// to `count` - 1 perform together: one for each of `events`, ascending.
CALDER_PROCESS_COMPILER_EXPORT void append_joint_rules(UnCompiledFormat& format, unsigned count,
                                                       BitSet const& events);

/// Lets arguments 0 to `count` - 1 run in `format`.
CALDER_PROCESS_COMPILER_EXPORT void activate_first_components(UnCompiledFormat& format,
                                                              unsigned count);

/// Makes `formats[index]` the format in which argument `component` runs alone and every event of
/// `alphabet` passes through unchanged: one rule an event, ascending, staying in the format.
/// Throws std::out_of_range when there is no such format.
CALDER_PROCESS_COMPILER_EXPORT void make_identity_format(std::deque<UnCompiledFormat>& formats,
                                                         unsigned index, BitSet const& alphabet,
                                                         unsigned component);

/// Makes `formats[index]` the format of STOP: nothing runs, no rule. An index equal to the number
/// of formats appends the format; a larger one throws std::out_of_range.
CALDER_PROCESS_COMPILER_EXPORT void make_stop_format(std::deque<UnCompiledFormat>& formats,
                                                     unsigned index);

} // namespace Calder::HighLevelMachine
