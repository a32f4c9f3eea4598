#include "process_compiler/recursion_watch.h"
#include "script/script.h"
#include "tools/check_command.h"
#include "tools/command_error.h"
#include "tools/command_line.h"
#include "tools/explore_command.h"
#include "tools/interruption.h"
#include "tools/machine_command.h"
#include "tools/out_of_memory.h"
#include "tools/print_command.h"
#include "tools/stack_limit.h"
#include "tools/standard_streams.h"
#include "tools/version.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <limits>
#include <new>
#include <optional>
#include <sstream>

using namespace Calder::Tools;

namespace {

constexpr unsigned most_threads = 1024;

/// What the command line asks for.
using Work = std::function<int()>;

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
    command.add_option(name, number, description)->type_name("N")->check(whole_number(least, most));
}

void add_search(CLI::App& command, SearchOptions& options, char const* threads) {
    command
        .add_option_function<std::string>(
            "--engine",
            [&](std::string const& word) {
                options.engine = word == "terms" ? Engine::terms : Engine::machine;
            },
            "Explore the machine that the process compiles to, or its terms one by one")
        ->type_name("machine|terms")
        ->check(one_of({"machine", "terms"}))
        ->default_str("machine");
    add_number(command, "--threads", options.threads, 1, threads, most_threads);
    add_number(command, "--max-states", options.max_states, 1, "Stop at this many states");
    add_number(command, "--max-memory", options.max_memory_mib, 1,
               "Stop at this much memory, in MiB; by default at most of what is free");
}

void add_messages(CLI::App& command, SearchOptions& options) {
    command.add_flag("--progress", options.progress,
                     "Show how it gets on, also where standard error is no terminal");
    command.add_flag("--quiet", options.quiet, "Write only results and errors");
}

void add_explore(CLI::App& app, ExploreOptions& options, Work& work) {
    CLI::App* const command =
        app.add_subcommand("explore", "Explore a process and count its states and transitions");
    add_input(*command, options.input);
    add_search(*command, options.search,
               "How many threads run the machine, up to 1024; by default all that there are");
    command
        ->add_option("--output", options.output,
                     "Write the transition system to a file, .aut or .dot by its ending")
        ->type_name("FILE")
        ->check(not_empty());
    command->add_option("--tau", options.tau_label, "How an .aut file writes the silent event")
        ->type_name("tau|i")
        ->check(one_of({"tau", "i"}))
        ->capture_default_str();
    command->add_flag(
        "--deadlock", options.deadlock,
        "Look for a deadlock and tell a shortest way to it; exit with 1 if there is one");
    add_messages(*command, options.search);
    command->callback([&] { work = [&] { return explore_process(options); }; });
}

void add_check(CLI::App& app, CheckOptions& options, Work& work) {
    CLI::App* const command =
        app.add_subcommand("check", "Answer what a script asserts, and show why");
    add_file(*command, options.input);
    command
        ->add_option("--assert", options.input.assertions,
                     "Ask this, too, as it would stand behind 'assert' at the end; any number")
        ->type_name("TEXT")
        ->check(not_empty("nothing is asked"))
        ->expected(1)
        ->allow_extra_args(false) // FILE may stand behind it
        ->take_all();
    command
        ->add_option("--only", options.only,
                     "Answer only these assertions, counted from 1: --only 2,5")
        ->type_name("N,...");
    add_definitions(*command, options.input);
    add_search(*command, options.search,
               "Taken as 'explore' takes it; a question is answered by one thread");
    command->add_flag("--json", options.json, "As JSON");
    add_messages(*command, options.search);
    command->callback([&] { work = [&] { return check_script(options); }; });
}

void add_print(CLI::App& app, PrintOptions& options, Work& work) {
    CLI::App* const command = app.add_subcommand("print", "Print a process as a term");
    add_input(*command, options.input);
    command->add_flag("--abbreviate", options.abbreviate, "Print … for continuations and sets");
    add_number(*command, "--budget", options.budget, 0,
               "Print no further than the piece, whole, that reaches this many characters");
    add_number(*command, "--width", options.width, 1, "Break lines at this width");
    command->callback([&] { work = [&] { return print_term(options); }; });
}

void add_describe(CLI::App& app, Input& input, Work& work) {
    CLI::App* const command =
        app.add_subcommand("describe", "Describe the outermost construct of a process in words");
    add_input(*command, input);
    command->callback([&] { work = [&] { return describe_term(input); }; });
}

void add_machine(CLI::App& app, MachineOptions& options, Work& work) {
    CLI::App* const command =
        app.add_subcommand("machine", "Print the machine that a process compiles to");
    add_input(*command, options.input);
    command->add_flag("--json", options.json, "As JSON");
    command->callback([&] { work = [&] { return print_machine(options); }; });
}

/// Help, the version, or what is wrong with the command line.
int answer(CLI::App const& app, CLI::ParseError const& error) {
    std::ostringstream results;
    std::ostringstream messages;
    results.exceptions(std::ios_base::badbit);
    messages.exceptions(std::ios_base::badbit);
    int const result = app.exit(error, results, messages) == 0 ? exit_holds : exit_bad_input;
    if (failed_allocations() > 0) { // in the library's own streams, and half the help is missing
        throw std::bad_alloc();
    }
    print_result(results.str());
    print_message(messages.str());
    return result;
}

int run(int count, char** words) {
    CLI::App app(
        "Explores, checks, compiles, prints and describes CSP processes.\n"
        "Exit codes: 0 done and what was asked for holds, 1 it does not hold,\n"
        "2 the input or the command line is wrong or results cannot be written, 3 stopped early.",
        "calder");
    app.set_version_flag("--version", std::string("calder ") + version);
    app.require_subcommand(1);

    app.failure_message(command_line_error);

    Work work;
    ExploreOptions explore;
    CheckOptions check;
    PrintOptions print;
    Input describe;
    MachineOptions machine;
    add_explore(app, explore, work);
    add_check(app, check, work);
    add_print(app, print, work);
    add_describe(app, describe, work);
    add_machine(app, machine, work);
    try {
        app.parse(count, words);
    } catch (CLI::ParseError const& error) {
        return answer(app, error);
    }
    return work();
}

int guarded_run(int count, char** words) {
    try {
        require_stack();
        int const result = run(count, words);
        finish_results();
        return result;
    } catch (ResultsLost const& lost) {
        return tell_lost_results(lost);
    } catch (CommandError const& error) {
        print_message(error.what());
        print_message("\n");
        return error.exit_code();
    } catch (Calder::Script::ScriptError const& error) {
        print_message(error.what());
        return exit_bad_input;
    } catch (std::bad_alloc const&) {
        print_message(out_of_memory);
        return exit_stopped_early;
    } catch (Calder::ProcessCompiler::NestedTooDeeply const& error) {
        print_message("calder: ");
        print_message(error.what());
        print_message("\n");
        return exit_stopped_early;
    } catch (std::exception const& error) {
        print_message("calder: ");
        print_message(error.what());
        print_message("\n");
        return exit_bad_input;
    }
}

} // namespace

int main(int count, char** words) {
    prepare_standard_streams();
    end_when_interrupted();
    return guarded_run(count, words);
}
