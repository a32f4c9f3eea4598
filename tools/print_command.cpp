#include "tools/print_command.h"

#include "process_compiler/printing.h"
#include "tools/command_error.h"
#include "tools/standard_streams.h"
#include "tools/term_text.h"

namespace Calder::Tools {

int print_term(PrintOptions const& options) {
    return run_with_process(options.input, [&](auto const& script, auto const& definition) {
        ResultStream results;
        print_to(results, script.session(), [&](ProcessCompiler::Printer& printer) {
            printer.abbreviate = options.abbreviate;
            if (options.budget) {
                ProcessCompiler::cut_text(printer, *options.budget);
            }
            printer.line_width = options.width.value_or(printer.line_width);
            definition.body->pretty_print(printer);
            printer << "\n";
        });
        return exit_holds;
    });
}

int describe_term(Input const& input) {
    return run_with_process(input, [](auto const& script, auto const& definition) {
        ResultStream results;
        print_to(results, script.session(), [&](ProcessCompiler::Printer& printer) {
            definition.body->pretty_print_operator_description(printer);
            printer << "\n";
        });
        return exit_holds;
    });
}

} // namespace Calder::Tools
