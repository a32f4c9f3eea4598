#include "tools/explore_command.h"

#include "state_space/available_memory.h"
#include "state_space/deadlock.h"
#include "state_space/exploration.h"
#include "state_space/memory.h"
#include "tools/command_error.h"
#include "tools/interruption.h"
#include "tools/progress_line.h"

#include <fmt/core.h>

#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace Calder::Tools {

namespace {

constexpr std::uint64_t bytes_per_mib = std::uint64_t{1024} * 1024;

/// Without a limit of the user's, most of what there is: rather a search that says how far it came
/// than one that the system kills.
std::uint64_t memory_limit(ExploreOptions const& options) {
    if (options.max_memory_mib) {
        return *options.max_memory_mib * bytes_per_mib;
    }
    return StateSpace::resident_bytes() + StateSpace::available_bytes() / 10 * 9;
}

StateSpace::Exploration explore(Script::Script const& script,
                                Script::Script::Definition const& definition,
                                ExploreOptions const& options) {
    InterruptionWatch const watch;
    ProgressLine line(!options.quiet && (options.progress || isatty(STDERR_FILENO) == 1));
    StateSpace::ExplorationOptions bounds;
    bounds.max_states = options.max_states.value_or(bounds.max_states);
    bounds.max_memory = memory_limit(options);
    bounds.progress = [&](StateSpace::Progress const& progress) {
        line.update(progress);
        return !watch.interrupted();
    };
    return StateSpace::explore(definition.term, script.processes(), bounds);
}

/// One line of the summary: a title and what stands for it.
void tell(char const* title, std::string const& text) {
    fmt::print("{:<13}{}\n", title, text);
}

std::string trace_text(StateSpace::Deadlock const& deadlock,
                       ProcessCompiler::Session const& session) {
    std::string text;
    for (unsigned const event : deadlock.trace) {
        text += (text.empty() ? "" : ", ") + session.event_object(event)->name();
    }
    return text.empty() ? "at the start" : "after " + text;
}

/// Tells whether there is a deadlock in what was explored; says whether none was found.
bool tell_deadlock(StateSpace::Exploration const& exploration, bool complete,
                   ProcessCompiler::Session const& session) {
    auto const deadlock = StateSpace::find_deadlock(exploration.lts);
    if (deadlock) {
        tell("deadlock", trace_text(*deadlock, session));
    } else {
        tell("deadlock", complete ? "none" : "none in what was explored");
    }
    return !deadlock;
}

} // namespace

int explore_process(ExploreOptions const& options) {
    if (!options.output.empty()) {
        StateSpace::lts_format_of(options.output); // before the work, not after it
    }
    auto const script = read_input(options.input);
    auto const& definition = chosen_process(*script, options.input);

    auto const start = std::chrono::steady_clock::now();
    StateSpace::Exploration const exploration = explore(*script, definition, options);
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
    bool const complete = exploration.outcome == StateSpace::Outcome::complete;

    tell("process", definition.name);
    tell("states", fmt::format("{}", exploration.lts.state_count()));
    tell("transitions", fmt::format("{}", exploration.lts.transition_count()));
    tell("complete",
         complete ? "yes" : fmt::format("no: {}", StateSpace::describe(exploration.outcome)));
    bool const holds = !options.deadlock || tell_deadlock(exploration, complete, script->session());
    tell("time", fmt::format("{:.2f} s", time.count()));
    tell("peak memory",
         fmt::format("{:.1f} MiB", static_cast<double>(StateSpace::peak_resident_bytes()) /
                                       static_cast<double>(bytes_per_mib)));
    std::fflush(stdout);

    if (!options.output.empty() && complete) {
        StateSpace::LtsFileOptions file_options;
        file_options.tau_label = options.tau_label;
        StateSpace::write_lts_file(options.output, exploration.lts, script->session(),
                                   file_options);
    } else if (!options.output.empty()) {
        fmt::print(stderr, "calder: {} was not written: the exploration is not complete\n",
                   options.output);
    }
    if (!complete) {
        return exit_stopped_early;
    }
    return holds ? exit_holds : exit_fails;
}

} // namespace Calder::Tools
