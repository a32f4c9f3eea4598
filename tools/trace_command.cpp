#include "tools/trace_command.h"

#include "pins/model.h"
#include "state_space/machine/machine_refusal.h"
#include "state_space/search_monitor.h"
#include "tools/command_error.h"
#include "tools/standard_streams.h"
#include "tools/trace_report.h"

#include <fmt/core.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <system_error>
#include <utility>

namespace Calder::Tools {

namespace {

/// Standard input is closed like any other: nobody else reads it.
struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

std::string trace_name(TraceOptions const& options) {
    return options.trace == "-" ? "standard input" : options.trace;
}

CommandError unreadable(TraceOptions const& options, int error) {
    return CommandError(
        fmt::format("cannot read {}: {}", trace_name(options), std::strerror(error)));
}

void tell(FollowedTrace const& trace, TracedMachine const& machine, bool as_json) {
    if (as_json) {
        std::function<void(std::string_view)> const write = print_result;
        JsonWriter json(write);
        write_trace_json(trace, machine, json);
    } else {
        print_result(trace_text(trace, machine));
    }
}

void follow_and_tell(Script::Script const& script, Script::Script::Definition const& definition,
                     std::FILE* file, TraceOptions const& options) {
    StateSpace::ExplorationOptions bounds;
    bounds.max_memory = StateSpace::default_memory_limit();
    StateSpace::SearchMonitor monitor(bounds, StateSpace::SearchMonitor::longest_for_terms);
    try {
        Pins::Model model = Pins::make_model(definition.term, script.processes(), bounds);
        Refinement::RunningMachine const running{std::move(model.machine), model.tables};
        RunNames names(script, running);
        TracedMachine const machine{definition.name, running, *model.vectors, names};
        tell(follow_trace(file, trace_name(options), machine, monitor), machine, options.json);
    } catch (StateSpace::SearchEnded const&) {
        throw CommandError(fmt::format("{} was not followed to its end: {}", trace_name(options),
                                       StateSpace::describe(StateSpace::Outcome::memory_limit)),
                           exit_stopped_early);
    }
}

} // namespace

int tell_trace(TraceOptions const& options) {
    if (options.input.file == "-" && options.trace == "-") {
        throw CommandError("FILE and TRACE cannot both be standard input");
    }
    File const file(options.trace == "-" ? stdin : std::fopen(options.trace.c_str(), "rb"));
    if (!file) {
        throw unreadable(options, errno);
    }
    return run_with_process(options.input, [&](auto const& script, auto const& definition) {
        try {
            follow_and_tell(script, definition, file.get(), options);
            return exit_holds;
        } catch (TraceError const& error) {
            throw Script::ScriptErrors({error.diagnostic()}, {error.source()});
        } catch (std::system_error const& error) {
            throw unreadable(options, error.code().value());
        } catch (StateSpace::MachineRefusal const& refusal) {
            throw CommandError(
                fmt::format("{} has no machine: {}", definition.name, refusal.what()));
        }
    });
}

} // namespace Calder::Tools
