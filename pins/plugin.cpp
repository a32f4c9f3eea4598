#include "pins/engine_model.h"

#include <optional>
#include <utility>

// What the engine looks for by name in a language module; plugin.map lets nothing else out.

namespace {

using namespace Calder;

/// What follows `--loader` on the command line: the engine knows the options from there on.
char* wanted_process = nullptr;
/// Ends with a null pointer; null when there is none.
char** wanted_definitions = nullptr;

/// Made by the first worker while the others wait for it, and taken when all of them load.
std::optional<Pins::CompiledScript> loaded_before;

Pins::CompiledScript compile(char const* file) {
    Script::ScriptFile wanted;
    wanted.file = file;
    wanted.process = wanted_process != nullptr ? wanted_process : "";
    for (char** each = wanted_definitions; each != nullptr && *each != nullptr; ++each) {
        wanted.definitions.emplace_back(*each);
    }
    return Pins::compile_script(wanted);
}

/// So that what is wrong with a script is told once, and not by every worker at a time.
void load_before(model_t, char const* file) noexcept {
    try {
        loaded_before = compile(file);
    } catch (...) {
        Pins::end_with_current_exception();
    }
}

void load(model_t model, char const* file) noexcept {
    try {
        Pins::hand_over(model, loaded_before ? std::move(*loaded_before) : compile(file));
        loaded_before.reset();
    } catch (...) {
        Pins::end_with_current_exception();
    }
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

char pins_plugin_name[] = "Calder";

loader_record pins_loaders[] = {{"csp", load}, {nullptr, nullptr}};

poptOption pins_options[] = {
    {"process", 0, POPT_ARG_STRING, &wanted_process, 0,
     "the process to search, a name or any process of the notation; by default the one defined "
     "last",
     "<process>"},
    {"define", 0, POPT_ARG_ARGV, &wanted_definitions, 0,
     "define NAME in the place of what the script does; may be given again", "<NAME=VALUE>"},
    POPT_TABLEEND};

/// Called once for each process, when the module is loaded.
void init(int, char**) {
    GBregisterPreLoader("csp", load_before);
}

} // extern "C"
#pragma GCC visibility pop
