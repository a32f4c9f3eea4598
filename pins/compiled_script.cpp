#include "pins/compiled_script.h"

#include "state_space/available_memory.h"
#include "state_space/machine/machine_refusal.h"
#include "state_space/search_monitor.h"

#include <fmt/core.h>

#include <exception>
#include <new>
#include <utility>

namespace Calder::Pins {

CompiledScript compile_script(Script::ScriptFile const& wanted) {
    CompiledScript compiled;
    compiled.script = Script::read_script_file(wanted);
    Script::Script::Definition const& process = Script::chosen_process(*compiled.script, wanted);
    StateSpace::ExplorationOptions options;
    options.max_memory = StateSpace::default_memory_limit();
    try {
        compiled.model = make_model(process.term, compiled.script->processes(), options);
    } catch (StateSpace::MachineRefusal const& refusal) {
        throw Script::ScriptFileError(fmt::format(
            "{} cannot be compiled for an engine of vectors: {}", process.name, refusal.what()));
    } catch (StateSpace::SearchEnded const&) { // by the only limit that was given
        throw std::bad_alloc();
    }
    return compiled;
}

std::string words_of_current_exception() {
    try {
        throw;
    } catch (Script::ScriptErrors const& errors) {
        return Script::render_all(errors.diagnostics(), errors.sources());
    } catch (Script::ScriptError const& error) {
        return error.what();
    } catch (std::bad_alloc const&) {
        return out_of_memory_words;
    } catch (std::exception const& error) {
        return fmt::format("calder: {}\n", error.what());
    }
}

} // namespace Calder::Pins
