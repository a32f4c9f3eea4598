#include "tools/print_command.h"

#include "process_compiler/printing.h"
#include "process_compiler/recursion_watch.h"
#include "state_space/stack_guard.h"
#include "tools/command_error.h"

#include <fmt/core.h>

#include <iostream>

namespace Calder::Tools {

int print_term(PrintOptions const& options) {
    auto const script = read_input(options.input);
    auto const& definition = chosen_process(*script, options.input);
    ProcessCompiler::Printer printer(std::cout, &script->session());
    printer.abbreviate = options.abbreviate;
    if (options.budget) {
        ProcessCompiler::cut_text(printer, *options.budget);
    }
    printer.line_width = options.width.value_or(printer.line_width);
    try {
        ProcessCompiler::RecursionWatch const watch(StateSpace::StackGuard().lowest());
        definition.body->pretty_print(printer);
        printer << "\n";
    } catch (ProcessCompiler::NestedTooDeeply const& error) {
        printer.silenced = true;
        fmt::print(stderr, "calder: {}\n", error.what());
        return exit_stopped_early;
    } catch (...) {
        printer.silenced = true; // its destructor would write, and must not throw
        throw;
    }
    return exit_holds;
}

int describe_term(Input const& input) {
    auto const script = read_input(input);
    auto const& definition = chosen_process(*script, input);
    ProcessCompiler::Printer printer(std::cout, &script->session());
    definition.body->pretty_print_operator_description(printer);
    printer << "\n";
    return exit_holds;
}

} // namespace Calder::Tools
