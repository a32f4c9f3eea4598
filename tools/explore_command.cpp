#include "tools/explore_command.h"

#include "state_space/deadlock.h"
#include "state_space/machine/machine_exploration.h"
#include "tools/by_terms_note.h"
#include "tools/command_error.h"
#include "tools/interruption.h"
#include "tools/leaf_names.h"
#include "tools/progress_line.h"
#include "tools/standard_streams.h"
#include "tools/step_lines.h"
#include "tools/summary.h"

#include <fmt/core.h>

#include <algorithm>
#include <chrono>

namespace Calder::Tools {

namespace {

/// One search of a process, by one engine or the other.
class Search {
  public:
    Search(Script::Script const& script, Script::Script::Definition const& definition,
           StateSpace::RunOptions bounds)
        : m_script(script), m_definition(definition), m_bounds(std::move(bounds)) {}

    /// By the machine, if there is one; otherwise by terms, and `note` says why.
    StateSpace::MachineExploration by_machine(std::string& note) const {
        try {
            StateSpace::MachineExploration found =
                StateSpace::explore_by_machine(m_definition.term, m_script.processes(), m_bounds);
            std::string const& reason =
                found.run.refusal.empty() ? found.why_by_terms : found.run.refusal;
            if (!reason.empty()) {
                note = by_terms_note(m_definition.name + " is", reason, found.refused, m_script);
            }
            return found.run.refusal.empty() ? std::move(found) : by_terms();
        } catch (Script::ScriptError const& error) {
            note = by_terms_note(m_definition.name + " is", error);
            return by_terms();
        }
    }

    StateSpace::MachineExploration by_terms() const {
        StateSpace::MachineExploration found;
        found.run = StateSpace::run_of(
            StateSpace::explore(m_definition.term, m_script.processes(), m_bounds));
        return found;
    }

  private:
    Script::Script const& m_script;
    Script::Script::Definition const& m_definition;
    StateSpace::RunOptions m_bounds;
};

StateSpace::MachineExploration explore(Script::Script const& script,
                                       Script::Script::Definition const& definition,
                                       ExploreOptions const& options,
                                       InterruptionWatch const& watch) {
    ProgressLine line(options.search.shows_progress());
    StateSpace::RunOptions bounds;
    bounds.max_states = options.search.max_states.value_or(bounds.max_states);
    bounds.max_memory = options.search.memory_limit();
    bounds.progress = [&](StateSpace::Progress const& progress) {
        line.update(progress);
        return !watch.interrupted();
    };
    bounds.threads = options.search.thread_count();
    bounds.keep_transitions = options.deadlock || !options.output.empty();
    Search const search(script, definition, std::move(bounds));
    if (options.search.engine == Engine::terms) {
        return search.by_terms();
    }
    std::string note;
    StateSpace::MachineExploration result = search.by_machine(note);
    if (!note.empty() && !result.machine && !options.search.quiet) {
        print_message(note);
    }
    return result;
}

std::string trace_text(StateSpace::Deadlock const& deadlock,
                       ProcessCompiler::Session const& session) {
    std::string text;
    for (unsigned const event : deadlock.trace) {
        text += (text.empty() ? "" : ", ") + session.event_object(event)->name();
    }
    return text.empty() ? "at the start" : "after " + text;
}

/// For each event of the trace, which leaves of the machine take part in it.
void tell_steps(StateSpace::Deadlock const& deadlock,
                StateSpace::MachineExploration const& exploration, Script::Script const& script) {
    LeafNames const names(script, *exploration.machine);
    std::size_t width = least_column_width;
    for (unsigned const event : deadlock.trace) {
        width = std::max(width, script.session().event_object(event)->name().size());
    }
    for (std::size_t step = 0; step < deadlock.trace.size(); ++step) {
        StateSpace::StateNumber const source = deadlock.sources[step];
        StateSpace::StateNumber const target =
            step + 1 < deadlock.sources.size() ? deadlock.sources[step + 1] : deadlock.state;
        std::string const event = script.session().event_object(deadlock.trace[step])->name();
        tell("", fmt::format(
                     "{:<{}} {}", event, width,
                     names_taking_part(names, exploration, source, deadlock.trace[step], target)));
    }
}

/// Tells whether there is a deadlock in what was explored; says whether none was found.
bool tell_deadlock(StateSpace::MachineExploration const& exploration,
                   Script::Script const& script) {
    auto const deadlock = StateSpace::find_deadlock(exploration.run.lts);
    if (!deadlock) {
        bool const complete = exploration.run.outcome == StateSpace::Outcome::complete;
        tell("deadlock", complete ? "none" : "none in what was explored");
        return true;
    }
    tell("deadlock", trace_text(*deadlock, script.session()));
    if (exploration.machine) {
        tell_steps(*deadlock, exploration, script);
    }
    return false;
}

/// What explored: a machine tells its size.
std::string engine_text(StateSpace::MachineExploration const& exploration) {
    if (!exploration.machine) {
        return "terms";
    }
    std::size_t const leaves = start_leaves(exploration).size();
    std::size_t const configurations = configurations_met(exploration);
    return fmt::format("machine of {} component{}{}", leaves, leaves == 1 ? "" : "s",
                       configurations <= 1
                           ? ""
                           : fmt::format(" at the start, in {} configurations", configurations));
}

/// False, and told, when there is no such file.
bool write_file(ExploreOptions const& options, StateSpace::Run const& run,
                ProcessCompiler::Session const& session, InterruptionWatch const& watch) {
    std::string reason = "the exploration is not complete";
    if (run.outcome == StateSpace::Outcome::complete) {
        StateSpace::LtsFileOptions file_options;
        file_options.tau_label = options.tau_label;
        file_options.keep_going = [&watch] { return !watch.interrupted(); };
        try {
            StateSpace::write_lts_file(options.output, run.lts, session, file_options);
            return true;
        } catch (StateSpace::LtsFileStopped const&) {
            reason = "interrupted";
        }
    }
    print_message(fmt::format("calder: {} was not written: {}\n", options.output, reason));
    return false;
}

/// A deadlock that was found is one, however the search ended. The exit code then says that, and a
/// message the other.
int exit_code(StateSpace::Run const& run, bool holds, bool is_written) {
    bool const complete = run.outcome == StateSpace::Outcome::complete;
    if (!holds) {
        if (!complete) {
            print_message(fmt::format("calder: the search stopped early: {}\n",
                                      StateSpace::describe(run.outcome)));
        }
        return exit_fails;
    }
    return complete && is_written ? exit_holds : exit_stopped_early;
}

int explore_and_tell(Script::Script const& script, Script::Script::Definition const& definition,
                     ExploreOptions const& options) {
    InterruptionWatch const watch;
    auto const start = std::chrono::steady_clock::now();
    StateSpace::MachineExploration const exploration = explore(script, definition, options, watch);
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
    StateSpace::Run const& run = exploration.run;
    bool const complete = run.outcome == StateSpace::Outcome::complete;

    tell("process", definition.name);
    tell("engine", engine_text(exploration));
    tell("states", fmt::format("{}", run.state_count));
    tell("transitions", fmt::format("{}", run.transition_count));
    tell("complete", complete ? "yes" : fmt::format("no: {}", StateSpace::describe(run.outcome)));
    bool const holds = !options.deadlock || tell_deadlock(exploration, script);
    tell_time_and_memory(time);
    finish_results();

    bool const is_written =
        options.output.empty() || write_file(options, run, script.session(), watch);
    return exit_code(run, holds, is_written);
}

} // namespace

int explore_process(ExploreOptions const& options) {
    if (!options.output.empty()) {
        StateSpace::check_lts_file(options.output); // before the work, not after it
    }
    return run_with_process(
        options.input,
        [&](auto const& script, auto const& definition) {
            return explore_and_tell(script, definition, options);
        },
        options.search.memory_limit());
}

} // namespace Calder::Tools
