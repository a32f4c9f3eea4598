#include "tools/machine_command.h"

#include "state_space/machine/compile/compile.h"
#include "tools/command_error.h"
#include "tools/interruption.h"
#include "tools/machine_json.h"
#include "tools/machine_text.h"
#include "tools/messages.h"
#include "tools/standard_streams.h"

#include <fmt/core.h>

#include <utility>

namespace Calder::Tools {

namespace {

int print_machine_of(Script::Script const& script, Script::Script::Definition const& definition,
                     bool as_json) {
    StateSpace::TermGraph graph = StateSpace::make_term_graph(definition.term, script.processes());
    std::vector<Remark> notes = recursion_notes(graph.refused, script);
    StateSpace::Compilation compilation;
    {
        InterruptionWatch const watch;
        StateSpace::CompilationOptions bounds;
        bounds.max_memory = StateSpace::default_memory_limit();
        bounds.progress = [&](StateSpace::Progress const&) { return !watch.interrupted(); };
        compilation =
            StateSpace::compile(StateSpace::make_term_graph(definition.term, script.processes()),
                                script.processes(), bounds);
    }
    if (!compilation.machine) {
        tell_message(
            {Severity::error,
             fmt::format("{} has no machine: {}", definition.name,
                         compilation.refusal.empty() ? std::string(describe(compilation.outcome))
                                                     : compilation.refusal),
             std::move(notes)});
        return compilation.outcome == StateSpace::Outcome::complete ? exit_bad_input
                                                                    : exit_stopped_early;
    }
    LeafNames const names(script, *compilation.machine);
    ShownMachine const shown{definition.name, *compilation.machine, script, names};
    if (as_json) {
        write_machine_json(shown, print_result);
    } else {
        print_result(machine_text(shown));
    }
    return exit_holds;
}

} // namespace

int print_machine(MachineOptions const& options) {
    return run_with_process(options.input, [&](auto const& script, auto const& definition) {
        return print_machine_of(script, definition, options.json);
    });
}

} // namespace Calder::Tools
