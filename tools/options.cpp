#include "tools/options.h"

#include "tools/command_line.h"
#include "tools/error_format.h"
#include "tools/word_lists.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <limits>

namespace Calder::Tools {

namespace {

constexpr unsigned most_threads = 1024;

/// "Exit codes: 0 done …": two on a line.
std::string words_about_exit_codes() {
    std::string text = "Exit codes: ";
    for (std::size_t code = 0; code < exit_meanings.size(); ++code) {
        text += code == 0 ? "" : code % 2 == 0 ? ",\n" : ", ";
        text += std::to_string(code) + " " + exit_meanings[code];
    }
    return text + ".";
}

void add_file(CLI::App& command, Input& input) {
    command.add_option("FILE", input.file, "The script; - for standard input")
        ->required()
        ->check(not_empty());
}

void add_definitions(CLI::App& command, Input& input) {
    command
        .add_option("--define", input.definitions,
                    "Define a constant of the script, in the place of what it says; any number")
        ->type_name("NAME=VALUE")
        ->expected(1)
        ->allow_extra_args(false) // FILE may stand behind it
        ->take_all();
}

void add_input(CLI::App& command, Input& input) {
    add_file(command, input);
    command
        .add_option("--process", input.process,
                    "The process, by its name or as a term; by default the last one defined")
        ->type_name("PROCESS")
        ->check(not_empty());
    add_definitions(command, input);
}

/// An option with a whole number, from `least` to what the variable holds or `most`.
template <typename Number>
void add_number(CLI::App& command, char const* name, std::optional<Number>& number,
                std::uint64_t least, char const* description,
                std::uint64_t most = std::numeric_limits<Number>::max()) {
    command.add_option(name, number, description)
        ->type_name("N")
        ->transform(whole_number(least, most));
}

/// An option with one of several words, the first of which is what it is without the option.
void add_choice(CLI::App& command, char const* name, std::vector<std::string> const& words,
                std::function<void(std::string const&)> const& take, char const* description) {
    command.add_option_function(name, take, description)
        ->type_name(joined(words, "|"))
        ->transform(one_of(words))
        ->default_str(words.front());
}

void add_search(CLI::App& command, SearchOptions& options, char const* threads) {
    add_choice(
        command, "--engine", {"machine", "terms"},
        [&](std::string const& word) {
            options.engine = word == "terms" ? Engine::terms : Engine::machine;
        },
        "Explore the machine that the process compiles to, or its terms one by one");
    add_number(command, "--threads", options.threads, 1, threads, most_threads);
    add_number(command, "--max-states", options.max_states, 1, "Stop at this many states");
    add_number(command, "--max-memory", options.max_memory_mib, 1,
               "Stop at this much memory, in MiB; by default at most of what is free");
}

void add_json(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "As JSON");
}

void add_error_format(CLI::App& command) {
    add_choice(
        command, "--error-format", {"text", "json"},
        [](std::string const& word) {
            choose_error_format(word == "json" ? ErrorFormat::json : ErrorFormat::text);
        },
        "Write messages for people, or for programs, a line of JSON each");
}

void add_messages(CLI::App& command, SearchOptions& options) {
    command.add_flag("--progress", options.progress,
                     "Show how it gets on, also where standard error is no terminal");
    command.add_flag("--quiet", options.quiet, "Write only results and errors");
}

void add_explore(CLI::App& command, ExploreOptions& options) {
    add_input(command, options.input);
    add_search(command, options.search,
               "How many threads run the machine, up to 1024; by default all that there are");
    command
        .add_option("--output", options.output,
                    "Write the transition system to a file, .aut or .dot by its ending")
        ->type_name("FILE")
        ->check(not_empty());
    add_choice(
        command, "--tau", {"tau", "i"}, [&](std::string const& word) { options.tau_label = word; },
        "How an .aut file writes the silent event");
    command.add_flag(
        "--deadlock", options.deadlock,
        "Look for a deadlock and tell a shortest way to it; exit with 1 if there is one");
    add_json(command, options.json);
    add_messages(command, options.search);
}

void add_check(CLI::App& command, CheckOptions& options) {
    add_file(command, options.input);
    command
        .add_option("--assert", options.input.assertions,
                    "Ask this, too, as it would stand behind 'assert' at the end; any number")
        ->type_name("TEXT")
        ->check(not_empty("nothing is asked"))
        ->expected(1)
        ->allow_extra_args(false) // FILE may stand behind it
        ->take_all();
    command
        .add_option("--only", options.only,
                    "Answer only these assertions, counted from 1: --only 2,5")
        ->type_name("N,...");
    add_definitions(command, options.input);
    add_search(command, options.search,
               "How many threads search a machine, up to 1024; by default all that there are");
    add_json(command, options.json);
    add_messages(command, options.search);
}

void add_print(CLI::App& command, PrintOptions& options) {
    add_input(command, options.input);
    command.add_flag("--abbreviate", options.abbreviate, "Print … for continuations and sets");
    add_number(command, "--budget", options.budget, 0,
               "Print no further than the piece, whole, that reaches this many characters");
    add_number(command, "--width", options.width, 1, "Break lines at this width");
}

void add_machine(CLI::App& command, MachineOptions& options) {
    add_input(command, options.input);
    add_json(command, options.json);
}

void add_trace(CLI::App& command, TraceOptions& options) {
    add_input(command, options.input);
    command
        .add_option("TRACE", options.trace,
                    "The trace, as ltsmin-printtrace writes a .csv file; - for standard input")
        ->required()
        ->check(not_empty());
    add_json(command, options.json);
}

} // namespace

std::unique_ptr<CLI::App> command_line_parser(CommandLine& line, std::string const& version) {
    auto app = std::make_unique<CLI::App>(
        "Explores, checks, compiles, prints and describes CSP processes.\n" +
            words_about_exit_codes(),
        "calder");
    app->set_version_flag("--version", version,
                          "Tell the version, the commit and the compiler, and exit");
    app->require_subcommand(1);
    auto const add = [&](char const* name, Command command, char const* description) -> CLI::App& {
        CLI::App* const added = app->add_subcommand(name, description);
        added->callback([&line, command] { line.command = command; });
        return *added;
    };
    add_explore(
        add("explore", Command::explore, "Explore a process and count its states and transitions"),
        line.explore);
    add_check(add("check", Command::check, "Answer what a script asserts, and show why"),
              line.check);
    add_print(add("print", Command::print, "Print a process as a term"), line.print);
    add_input(add("describe", Command::describe,
                  "Describe the outermost construct of a process in words"),
              line.describe);
    add_machine(add("machine", Command::machine, "Print the machine that a process compiles to"),
                line.machine);
    add_trace(add("trace", Command::trace, "Tell a trace that LTSmin found, step by step"),
              line.trace);
    for (CLI::App* const command : app->get_subcommands([](CLI::App*) { return true; })) {
        add_error_format(*command);
    }
    return app;
}

} // namespace Calder::Tools
