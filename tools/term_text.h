#pragma once

#include "process_compiler/recursion_watch.h"
#include "process_compiler/session.h"
#include "state_space/stack_guard.h"

#include <ostream>
#include <sstream>
#include <string>

namespace Calder::Tools {

/// Calls `print` with a printer to the stream. A failure in it or in writing is passed on, which the
/// printer's own destructor could not do; a term that nests too deeply for the stack throws
/// NestedTooDeeply.
template <typename Print>
void print_to(std::ostream& stream, ProcessCompiler::Session const& session, Print const& print) {
    ProcessCompiler::RecursionWatch const watch(StateSpace::StackGuard().lowest());
    ProcessCompiler::Printer printer(stream, &session);
    try {
        print(printer);
        printer.flush();
    } catch (...) {
        printer.silenced = true;
        throw;
    }
}

/// What is printed, without the blanks and line ends around it.
template <typename Print>
std::string printed_text(ProcessCompiler::Session const& session, Print const& print) {
    std::ostringstream text;
    text.exceptions(std::ios_base::badbit); // so that a failed allocation is passed on
    print_to(text, session, print);
    std::string const all = text.str();
    std::size_t const first = all.find_first_not_of(" \n");
    std::size_t const last = all.find_last_not_of(" \n");
    return first == std::string::npos ? "" : all.substr(first, last - first + 1);
}

} // namespace Calder::Tools
