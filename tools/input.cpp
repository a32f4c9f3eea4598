#include "tools/input.h"

#include "script/diagnostics.h"
#include "state_space/available_memory.h"
#include "state_space/memory.h"
#include "tools/command_error.h"

#include <fmt/core.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Calder::Tools {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string contents_of(std::string const& name) {
    std::unique_ptr<std::FILE, CloseFile> const file(std::fopen(name.c_str(), "rb"));
    std::string text;
    if (file) {
        char buffer[1 << 16];
        while (std::size_t const length = std::fread(buffer, 1, sizeof buffer, file.get())) {
            text.append(buffer, length);
        }
    }
    if (!file || std::ferror(file.get()) != 0) {
        throw CommandError(fmt::format("calder: cannot read {}: {}", name, std::strerror(errno)));
    }
    return text;
}

} // namespace

std::unique_ptr<Script::Script> read_input(Input const& input) {
    std::string const text = contents_of(input.file);
    Script::ReadResult result = Script::read_script(text);
    if (result.script) {
        return std::move(result.script);
    }
    std::string errors = Script::render_all(result.diagnostics, input.file, text);
    errors.pop_back(); // the newline that the caller adds to every message
    throw CommandError(errors);
}

Script::Script::Definition const& chosen_process(Script::Script const& script, Input const& input) {
    if (script.definitions().empty()) {
        throw CommandError(fmt::format("calder: {} defines no process", input.file));
    }
    if (input.process.empty()) {
        return script.definitions().back();
    }
    if (Script::Script::Definition const* const found = script.find(input.process)) {
        return *found;
    }
    std::string names;
    for (Script::Script::Definition const& definition : script.definitions()) {
        names += (names.empty() ? "" : ", ") + definition.name;
    }
    throw CommandError(fmt::format("calder: {} does not define '{}'; it defines: {}", input.file,
                                   input.process, names));
}

std::uint64_t default_memory_limit() {
    return StateSpace::resident_bytes() + StateSpace::available_bytes() / 10 * 9;
}

} // namespace Calder::Tools
