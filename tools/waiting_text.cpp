#include "tools/waiting_text.h"

#include "process_compiler/event_numbers.h"
#include "tools/step_lines.h"
#include "tools/summary.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

#include <algorithm>

namespace Calder::Tools {

using ProcessCompiler::no_event;
using Refinement::Waiting;
using Refinement::Wanted;

namespace {

/// What is wanted, by the component's own name for it, and what the whole makes of that.
std::string wish_text(Wanted const& wanted, RunNames const& names) {
    std::string const own = names.event(wanted.part_event);
    return wanted.event == no_event || wanted.event == wanted.part_event
               ? own
               : fmt::format("{} (as {})", own, names.event(wanted.event));
}

std::string giver_text(Wanted const& wanted, std::vector<std::string> const& components) {
    if (wanted.event == no_event) {
        return ", which nothing lets happen";
    }
    std::vector<std::string> missing;
    for (std::uint32_t const slot : wanted.missing) {
        missing.push_back(components[slot]);
    }
    return missing.empty() ? "" : " with " + joined(missing, " and ");
}

/// Events that take the same others.
struct Wish {
    std::string giver;
    std::vector<std::string> events;
};

/// "for a, b with P; for c with Q"
std::string wishes_text(std::vector<Wanted> const& wanted,
                        std::vector<std::string> const& components, RunNames const& names) {
    if (wanted.empty()) {
        return "for nothing: it has stopped";
    }
    std::vector<Wish> wishes;
    for (Wanted const& each : wanted) {
        std::string const giver = giver_text(each, components);
        auto wish = std::find_if(wishes.begin(), wishes.end(),
                                 [&](Wish const& known) { return known.giver == giver; });
        if (wish == wishes.end()) {
            wish = wishes.insert(wish, {giver, {}});
        }
        wish->events.push_back(wish_text(each, names));
    }
    std::vector<std::string> texts;
    for (Wish& wish : wishes) {
        texts.push_back("for " + listed(std::move(wish.events)) + wish.giver);
    }
    return listed(std::move(texts), "; ");
}

} // namespace

std::string waiting_text(std::vector<Waiting> const& waiting, Refinement::RunState const& state,
                         RunNames& names) {
    if (waiting.empty()) {
        return {};
    }
    std::vector<std::string> const& components = names.components(state);
    std::size_t width = least_column_width;
    for (std::string const& component : components) {
        width = std::max(width, component.size());
    }
    std::string text;
    for (Waiting const& each : waiting) {
        text += titled_line(text.empty() ? "waiting" : "",
                            fmt::format("{:<{}} {}", components[each.slot], width,
                                        wishes_text(each.wanted, components, names)));
    }
    std::vector<std::string> cycle;
    for (std::uint32_t const slot : Refinement::waiting_cycle(waiting)) {
        cycle.push_back(components[slot]);
    }
    if (!cycle.empty()) {
        cycle.push_back(cycle.front());
        text += titled_line("cycle", "each waits for the next: " + joined(cycle, " -> "));
    }
    return text;
}

} // namespace Calder::Tools
