#include "tools/command_error.h"
#include "tools/explore_command.h"
#include "tools/machine_command.h"
#include "tools/print_command.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <cstdio>
#include <map>
#include <new>

using namespace Calder::Tools;

namespace {

void add_input(CLI::App& command, Input& input) {
    command.add_option("FILE", input.file, "The script")->required();
    command.add_option("--process", input.process, "The process; by default the last one defined")
        ->type_name("NAME");
}

std::map<std::string, Engine> const engines{{"machine", Engine::machine}, {"terms", Engine::terms}};

constexpr unsigned most_threads = 1024;

void add_explore(CLI::App& app, ExploreOptions& options, int& result) {
    CLI::App* const command =
        app.add_subcommand("explore", "Explore a process and count its states and transitions");
    add_input(*command, options.input);
    command
        ->add_option("--engine", options.engine,
                     "Explore the machine that the process compiles to, or its terms one by one")
        ->type_name("machine|terms")
        ->transform(CLI::CheckedTransformer(engines, CLI::ignore_case))
        ->default_str("machine");
    command
        ->add_option("--threads", options.threads,
                     "How many threads run the machine; by default all that there are")
        ->type_name("N")
        ->check(CLI::Range(1U, most_threads));
    command->add_option("--max-states", options.max_states, "Stop at this many states")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--max-memory", options.max_memory_mib,
                     "Stop at this much memory, in MiB; by default at most of what is free")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--output", options.output,
                     "Write the transition system to a file, .aut or .dot by its ending")
        ->type_name("FILE");
    command->add_option("--tau", options.tau_label, "How an .aut file writes the silent event")
        ->check(CLI::IsMember({"tau", "i"}))
        ->capture_default_str();
    command->add_flag(
        "--deadlock", options.deadlock,
        "Look for a deadlock and tell a shortest way to it; exit with 1 if there is one");
    command->add_flag("--progress", options.progress,
                      "Show how it gets on, also where standard error is no terminal");
    command->add_flag("--quiet", options.quiet, "Write only results and errors");
    command->callback([&] { result = explore_process(options); });
}

void add_print(CLI::App& app, PrintOptions& options, int& result) {
    CLI::App* const command = app.add_subcommand("print", "Print a process as a term");
    add_input(*command, options.input);
    command->add_flag("--abbreviate", options.abbreviate, "Print … for continuations and sets");
    command->add_option("--budget", options.budget, "Stop printing after this many characters")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--width", options.width, "Break lines at this width")
        ->type_name("N")
        ->check(CLI::PositiveNumber);
    command->callback([&] { result = print_term(options); });
}

void add_describe(CLI::App& app, Input& input, int& result) {
    CLI::App* const command =
        app.add_subcommand("describe", "Describe the outermost construct of a process in words");
    add_input(*command, input);
    command->callback([&] { result = describe_term(input); });
}

void add_machine(CLI::App& app, MachineOptions& options, int& result) {
    CLI::App* const command =
        app.add_subcommand("machine", "Print the machine that a process compiles to");
    add_input(*command, options.input);
    command->add_flag("--json", options.json, "As JSON");
    command->callback([&] { result = print_machine(options); });
}

int run(int count, char** words) {
    CLI::App app("Explores, compiles, prints and describes CSP processes.\n"
                 "Exit codes: 0 done and what was asked for holds, 1 it does not hold,\n"
                 "2 the input or the command line is wrong, 3 stopped early.",
                 "calder");
    app.set_version_flag("--version", "calder " CALDER_VERSION);
    app.require_subcommand(1);

    int result = exit_holds;
    ExploreOptions explore;
    PrintOptions print;
    Input describe;
    MachineOptions machine;
    add_explore(app, explore, result);
    add_print(app, print, result);
    add_describe(app, describe, result);
    add_machine(app, machine, result);
    try {
        app.parse(count, words);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? exit_holds : exit_bad_input;
    }
    return result;
}

} // namespace

int main(int count, char** words) {
    try {
        return run(count, words);
    } catch (CommandError const& error) {
        fmt::print(stderr, "{}\n", error.what());
        return exit_bad_input;
    } catch (std::bad_alloc const&) {
        fmt::print(stderr, "calder: out of memory\n");
        return exit_stopped_early;
    } catch (std::exception const& error) {
        fmt::print(stderr, "calder: {}\n", error.what());
        return exit_bad_input;
    }
}
