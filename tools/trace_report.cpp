#include "tools/trace_report.h"

#include "refinement/waiting.h"
#include "tools/run_json.h"
#include "tools/step_lines.h"
#include "tools/summary.h"
#include "tools/waiting_text.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

namespace Calder::Tools {

std::string trace_text(FollowedTrace const& trace, TracedMachine const& machine) {
    RunNames& names = machine.names;
    std::string const process = short_name(machine.name);
    std::string const when = after(trace.steps.size());
    std::string text =
        trace.is_deadlock()
            ? titled_line("deadlock",
                          fmt::format("{} nothing can happen any more in {}", when, process))
        : trace.has_ended ? titled_line("end", fmt::format("{} {} has ended", when, process))
        : trace.steps.empty()
            ? titled_line("trace", fmt::format("{} is at the start", process))
            : titled_line("trace", fmt::format("{} goes through it like this", process));
    text += step_lines("", trace.steps, names);
    if (trace.loop_start) {
        text += titled_line(
            "loop", fmt::format("{} is again where it was {}", process, after(*trace.loop_start)));
    }
    if (trace.is_deadlock()) {
        text += waiting_text(waiting_in(machine.running, trace.end), trace.end, names);
    } else if (!trace.has_ended) {
        text += titled_line("possible", "then: " + listed(names.events(trace.offered)));
    }
    return text;
}

void write_trace_json(FollowedTrace const& trace, TracedMachine const& machine, JsonWriter& json) {
    RunNames& names = machine.names;
    json.begin_object();
    json.member("process", machine.name);
    json.key("reason");
    json.text_or_null(trace.is_deadlock() ? "deadlock" : trace.has_ended ? "end" : "");
    write_steps("steps", trace.steps, names, json);
    json.key("loop_start");
    if (trace.loop_start) {
        json.value(*trace.loop_start);
    } else {
        json.null();
    }
    write_events("offered", trace.offered, names, json);
    if (trace.is_deadlock()) {
        write_waiting(waiting_in(machine.running, trace.end), trace.end, names, json);
    }
    json.end_object();
    json.finish();
}

} // namespace Calder::Tools
