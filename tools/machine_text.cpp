#include "tools/machine_text.h"

#include <fmt/format.h>

namespace Calder::Tools {

using HighLevelMachine::ComponentEvent;
using HighLevelMachine::UnCompiledFormat;
using HighLevelMachine::UnCompiledRule;
using StateSpace::Leaf;
using StateSpace::Part;

namespace {

/// So many names that come back are told; a recursion may have an instance for every value.
constexpr std::size_t most_notes = 10;

std::string event_name(ShownMachine const& shown, unsigned event) {
    return shown.script.session().event_object(event)->name();
}

template <typename List, typename Text> std::string joined(List const& list, Text const& text) {
    std::string result;
    for (auto const& each : list) {
        result += (result.empty() ? "" : ", ") + text(each);
    }
    return result;
}

std::string alphabet_text(ShownMachine const& shown, BitSet const& alphabet) {
    return "{" + joined(alphabet, [&](unsigned event) { return event_name(shown, event); }) + "}";
}

std::string rule_text(ShownMachine const& shown, UnCompiledRule const& rule) {
    std::string const takers =
        joined(rule.component_events, [&](ComponentEvent const& participant) {
            return participant.event == ProcessCompiler::no_event
                       ? fmt::format("{} waits", participant.component)
                       : fmt::format("{} by {}", participant.component,
                                     event_name(shown, participant.event));
        });
    return fmt::format("      {} -> format {}{}\n", event_name(shown, rule.event),
                       rule.target_format, takers.empty() ? "" : ": " + takers);
}

std::string format_text(ShownMachine const& shown, Part const& part, unsigned number) {
    UnCompiledFormat const& format = part.formats[number];
    if (part.passed_through[number] != StateSpace::none) {
        return fmt::format("    format {}: argument {} alone, unchanged\n", number,
                           part.passed_through[number]);
    }
    std::string text = format.active_components.empty()
                           ? fmt::format("    format {}: no argument runs\n", number)
                           : fmt::format("    format {}: {} run\n", number,
                                         joined(format.active_components, [](unsigned argument) {
                                             return std::to_string(argument);
                                         }));
    for (UnCompiledRule const& rule : format.rules) {
        text += rule_text(shown, rule);
    }
    return text;
}

std::string construct_text(ShownMachine const& shown, StateSpace::PartNumber number) {
    Part const& part = shown.machine.parts[number];
    std::string text = fmt::format(
        "  part {}: {} over {}\n    alphabet {}\n", number,
        operator_text(*part.term, shown.script.session()),
        joined(part.arguments,
               [](StateSpace::PartNumber each) { return fmt::format("part {}", each); }),
        alphabet_text(shown, part.alphabet));
    for (unsigned format = 0; format < part.formats.size(); ++format) {
        text += format_text(shown, part, format);
    }
    return text;
}

} // namespace

std::string machine_text(ShownMachine const& shown) {
    StateSpace::Machine const& machine = shown.machine;
    std::string leaves;
    std::string constructs;
    for (StateSpace::PartNumber number = 0; number < machine.parts.size(); ++number) {
        Part const& part = machine.parts[number];
        if (part.is_construct()) {
            constructs += construct_text(shown, number);
            continue;
        }
        Leaf const& leaf = *machine.leaves[part.leaf];
        leaves += fmt::format("  part {}: {}, {} states, {} transitions\n    alphabet {}\n", number,
                              shown.names.name(part.leaf), leaf.state_count(),
                              leaf.transition_count(), alphabet_text(shown, part.alphabet));
    }
    return fmt::format("{} starts in part {}\n\ncomponents\n{}\nconstructs\n{}", shown.process,
                       machine.start, leaves, constructs.empty() ? "  none\n" : constructs);
}

std::vector<Remark> recursion_notes(std::vector<StateSpace::RefusedRecursion> const& all,
                                    Script::Script const& script) {
    std::vector<Remark> notes;
    std::size_t count = 0;
    for (StateSpace::RefusedRecursion const& refused : all) {
        for (ProcessCompiler::NamedProcessPointer const& name : refused.names) {
            if (++count > most_notes) {
                continue;
            }
            Script::Location const place = script.location_of(*name);
            notes.push_back(
                remark_at({script.sources()[place.source].name, place},
                          fmt::format("'{}' comes back inside argument {} of '{}'", name->name(),
                                      refused.argument,
                                      operator_text(*refused.construct, script.session()))));
        }
    }
    if (count > most_notes) {
        notes.push_back(remark(fmt::format("and {} more", count - most_notes)));
    }
    return notes;
}

} // namespace Calder::Tools
