#include "tools/explore_command.h"

#include "state_space/machine/machine_exploration.h"
#include "tools/by_terms_note.h"
#include "tools/command_error.h"
#include "tools/explore_report.h"
#include "tools/interruption.h"
#include "tools/messages.h"
#include "tools/progress_line.h"

#include <fmt/core.h>

#include <chrono>
#include <optional>

namespace Calder::Tools {

namespace {

/// One search of a process, by one engine or the other.
class Search {
  public:
    Search(Script::Script const& script, Script::Script::Definition const& definition,
           StateSpace::RunOptions bounds)
        : m_script(script), m_definition(definition), m_bounds(std::move(bounds)) {}

    /// By the machine, if there is one; otherwise by terms, and `note` says why.
    StateSpace::MachineExploration by_machine(std::optional<Message>& note) const {
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
    std::optional<Message> note;
    StateSpace::MachineExploration result = search.by_machine(note);
    if (note && !result.machine && !options.search.quiet) {
        tell_message(*note);
    }
    return result;
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
    tell_error(fmt::format("{} was not written: {}", options.output, reason));
    return false;
}

/// A deadlock that was found is one, however the search ended. The exit code then says that, and a
/// message the other.
int exit_code(StateSpace::Run const& run, bool holds, bool is_written) {
    bool const complete = run.outcome == StateSpace::Outcome::complete;
    if (!holds) {
        if (!complete) {
            tell_message({Severity::warning, fmt::format("the search stopped early: {}",
                                                         StateSpace::describe(run.outcome))});
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
    StateSpace::Run const& run = exploration.run;
    Explored const explored{script, definition.name, exploration,
                            std::chrono::steady_clock::now() - start, options.deadlock};
    auto const report = options.json ? explore_json_report() : explore_text_report();
    bool const holds = report->tell(explored);

    bool is_written = true;
    if (!options.output.empty()) {
        try {
            is_written = write_file(options, run, script.session(), watch);
        } catch (...) { // whatever it is, what was found has been told, and its text has an end
            report->tell_file("");
            report->finish();
            throw;
        }
        report->tell_file(is_written ? options.output : "");
    }
    report->finish();
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
