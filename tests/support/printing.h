#pragma once

#include "process_compiler/session.h"

#include <sstream>
#include <string>

namespace Calder::ProcessCompiler::Testing {

/// What `print(printer)` writes, complete.
template <typename Print> std::string printed_by(Session const& session, Print const& print) {
    std::ostringstream stream;
    {
        Printer printer(stream, &session);
        print(printer);
    }
    return stream.str();
}

inline std::string text_of(Session const& session, PrettyPrintable const& term,
                           bool abbreviate = false) {
    return printed_by(session, [&](Printer& printer) {
        printer.abbreviate = abbreviate;
        term.pretty_print(printer);
    });
}

inline std::string description_of(Session const& session, Process const& term) {
    return printed_by(session,
                      [&](Printer& printer) { term.pretty_print_operator_description(printer); });
}

} // namespace Calder::ProcessCompiler::Testing
