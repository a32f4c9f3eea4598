#include "process_compiler/recursion_watch.h"
#include "script/script_file.h"
#include "tools/command_error.h"
#include "tools/command_line.h"
#include "tools/error_format.h"
#include "tools/interruption.h"
#include "tools/messages.h"
#include "tools/options.h"
#include "tools/out_of_memory.h"
#include "tools/stack_limit.h"
#include "tools/standard_streams.h"
#include "tools/version.h"

#include <CLI/CLI.hpp>

#include <cstring>
#include <new>
#include <sstream>
#include <string>

using namespace Calder::Tools;

namespace {

/// Help, the version, or what is wrong with the command line.
int answer(CLI::App const& app, CLI::ParseError const& error) {
    if (error.get_exit_code() != 0) {
        tell_message(command_line_error(app, error));
        return exit_bad_input;
    }
    std::ostringstream results;
    results.exceptions(std::ios_base::badbit);
    app.exit(error, results, results);
    if (failed_allocations() > 0) { // in the library's own streams, and half the help is missing
        throw std::bad_alloc();
    }
    print_result(results.str());
    return exit_holds;
}

int tell_lost_results(ResultsLost const& lost) {
    end_where_reader_has_gone(lost);
    tell_error(std::string("cannot write standard output: ") + std::strerror(lost.error()));
    return exit_bad_input;
}

int do_work(CommandLine const& line) {
    switch (line.command) {
    case Command::explore: return explore_process(line.explore);
    case Command::check: return check_script(line.check);
    case Command::print: return print_term(line.print);
    case Command::describe: return describe_term(line.describe);
    case Command::machine: return print_machine(line.machine);
    case Command::trace: return tell_trace(line.trace);
    }
    return exit_bad_input;
}

int run(int count, char** words) {
    CommandLine line;
    auto const parser = command_line_parser(line, std::string("calder ") + version);
    try {
        parser->parse(count, words);
    } catch (CLI::ParseError const& error) {
        return answer(*parser, error);
    }
    return do_work(line);
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
        tell_error(error.wording());
        return error.exit_code();
    } catch (Calder::Script::ScriptFileError const& error) {
        tell_error(error.wording());
        return exit_bad_input;
    } catch (Calder::Script::ScriptErrors const& errors) {
        tell_script_errors(errors.diagnostics(), errors.sources());
        return exit_bad_input;
    } catch (Calder::Script::ScriptError const& error) {
        tell_script_error(error);
        return exit_bad_input;
    } catch (std::bad_alloc const&) {
        tell_out_of_memory();
        return exit_stopped_early;
    } catch (Calder::ProcessCompiler::NestedTooDeeply const& error) {
        tell_error(error.what());
        return exit_stopped_early;
    } catch (std::exception const& error) {
        tell_error(error.what());
        return exit_bad_input;
    }
}

} // namespace

int main(int count, char** words) {
    prepare_standard_streams();
    end_when_interrupted();
    choose_error_format(wanted_error_format(count, words));
    return guarded_run(count, words);
}
