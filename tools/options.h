#pragma once

#include "tools/check_command.h"
#include "tools/explore_command.h"
#include "tools/machine_command.h"
#include "tools/print_command.h"
#include "tools/trace_command.h"

#include <array>
#include <memory>
#include <string>

namespace CLI {
class App;
} // namespace CLI

namespace Calder::Tools {

/// What the exit codes mean, each at its number.
inline constexpr std::array exit_meanings{
    "done and what was asked for holds", "it does not hold",
    "the input or the command line is wrong or results cannot be written", "stopped early"};

enum class Command { explore, check, print, describe, machine, trace };

/// What a command line says.
struct CommandLine {
    Command command{};
    ExploreOptions explore;
    CheckOptions check;
    PrintOptions print;
    Input describe;
    MachineOptions machine;
    TraceOptions trace;
};

/// The commands and all that they take: the one place where that is declared. What is parsed is put
/// into `line`, which must outlive the parser; `version` is what --version tells. The manual page and
/// the completions are written from it, too: what an option takes they know by the name of its type,
/// `FILE` or `one|another`.
std::unique_ptr<CLI::App> command_line_parser(CommandLine& line, std::string const& version);

} // namespace Calder::Tools
