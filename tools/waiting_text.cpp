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
        return ", which nothing here lets happen";
    }
    std::vector<std::string> missing;
    for (std::uint32_t const slot : wanted.missing) {
        missing.push_back(components[slot]);
    }
    return missing.empty() ? "" : " with " + joined(missing, " and ");
}

/// Events that the same others could give.
struct Wish {
    std::vector<std::string> events;
    std::vector<std::string> givers; // any of them
};

/// What the rules never let happen is only told of who wants nothing else.
std::vector<Wish> wishes_of(std::vector<Wanted> const& wanted,
                            std::vector<std::string> const& components, RunNames const& names) {
    bool const has_hope = std::any_of(wanted.begin(), wanted.end(),
                                      [](Wanted const& each) { return each.event != no_event; });
    std::vector<Wish> wishes; // first by event
    for (Wanted const& each : wanted) {
        if (has_hope && each.event == no_event) {
            continue;
        }
        std::string const event = wish_text(each, names);
        if (wishes.empty() || wishes.back().events.front() != event) {
            wishes.push_back({{event}, {}});
        }
        wishes.back().givers.push_back(giver_text(each, components));
    }
    std::vector<Wish> merged;
    for (Wish& wish : wishes) {
        auto const same = std::find_if(merged.begin(), merged.end(), [&](Wish const& known) {
            return known.givers == wish.givers;
        });
        if (same == merged.end()) {
            merged.push_back(std::move(wish));
        } else {
            same->events.push_back(wish.events.front());
        }
    }
    return merged;
}

/// "for a, b with P or with Q", and on lines of their own "or for c with R".
std::string wishes_text(std::vector<Wish> wishes, std::size_t margin) {
    if (wishes.empty()) {
        return "for nothing: it has stopped";
    }
    std::vector<std::string> texts;
    texts.reserve(wishes.size());
    for (Wish& wish : wishes) {
        texts.push_back("for " + listed(std::move(wish.events)) +
                        listed(std::move(wish.givers), " or"));
    }
    return listed(std::move(texts), "\n" + std::string(title_width + margin, ' ') + "or ");
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
        text += titled_line(
            text.empty() ? "waiting" : "",
            fmt::format("{:<{}} {}", components[each.slot], width,
                        wishes_text(wishes_of(each.wanted, components, names), width + 1)));
    }
    std::vector<std::string> cycle;
    for (std::uint32_t const slot : Refinement::waiting_cycle(waiting)) {
        std::string const& component = components[slot];
        bool const has_arrow = component.find(" -> ") != std::string::npos; // of a prefix
        cycle.push_back(has_arrow ? "(" + component + ")" : component);
    }
    if (!cycle.empty()) {
        cycle.push_back(cycle.front());
        text += titled_line("cycle", "each waits for the next: " + joined(cycle, " -> "));
    }
    return text;
}

} // namespace Calder::Tools
