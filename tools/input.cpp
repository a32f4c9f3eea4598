#include "tools/input.h"

#include "tools/address_space_bound.h"
#include "tools/command_error.h"

#include <fmt/core.h>

#include <memory>
#include <new>

namespace Calder::Tools {

namespace {

std::unique_ptr<Script::Script> read_input(Input const& input, std::uint64_t max_memory) {
    try {
        AddressSpaceBound const bound(max_memory);
        return Script::read_script_file(input);
    } catch (std::bad_alloc const&) {
        throw CommandError(
            fmt::format("{} was not read: the limit on memory was reached", input.name()),
            exit_stopped_early);
    }
}

} // namespace

int run_with_script(Input const& input, ScriptWork const& work, std::uint64_t max_memory) {
    return work(*read_input(input, max_memory));
}

int run_with_process(Input const& input, ProcessWork const& work, std::uint64_t max_memory) {
    return run_with_script(
        input,
        [&](Script::Script const& script) {
            return work(script, Script::chosen_process(script, input));
        },
        max_memory);
}

} // namespace Calder::Tools
