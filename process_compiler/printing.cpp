#include "process_compiler/printing.h"

#include "process_compiler/recursion_watch.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler {

namespace {

constexpr unsigned description_indent = 4;

/// A piece is written whole where it is cut by its place; beyond this many bytes it is not.
constexpr std::size_t longest_whole_piece = 4096;

void print_operand(Printer& printer, Process const& construct, Process const& operand,
                   unsigned bare_associativity) {
    auto const [precedence, associativity] = construct.pretty_print_information();
    bool const bare = operand.pretty_print_is_same_operator(construct)
                          ? associativity == bare_associativity
                          : precedence > operand.pretty_print_information().first;
    if (bare) {
        print_within_budget(printer, operand);
        return;
    }
    printer << "(";
    print_within_budget(printer, operand);
    printer << ")";
}

} // namespace

void cut_text(Printer& printer, std::int32_t characters) {
    printer.remaining_characters = characters;
    printer.most_pending = static_cast<std::size_t>(characters) + longest_whole_piece;
}

void print_within_budget(Printer& printer, PrettyPrintable const& printed) {
    watch_recursion();
    if (printer.remaining_characters != 0 && !printer.has_enough()) {
        printed.pretty_print(printer);
    }
}

void print_event(Printer& printer, unsigned event) {
    if (EventPointer const object = printer.session->event_object(event)) {
        print_within_budget(printer, *object);
    }
}

void print_event_set(Printer& printer, BitSet const& events) {
    if (printer.remaining_characters != 0) {
        printer.session->event_set_object(events)->pretty_print(printer);
    }
}

void print_event_set_description(Printer& printer, char const* title, BitSet const& events) {
    IndentedDescription const indented(printer, title);
    print_event_set(printer, events);
}

IndentedDescription::IndentedDescription(Printer& printer, char const* title) : m_printer(printer) {
    printer << title << "\n";
    printer.indent += description_indent;
}

IndentedDescription::~IndentedDescription() {
    m_printer.indent -= description_indent;
}

void print_left_operand(Printer& printer, Process const& construct, Process const& operand) {
    print_operand(printer, construct, operand, left_associative);
}

void print_right_operand(Printer& printer, Process const& construct, Process const& operand) {
    print_operand(printer, construct, operand, right_associative);
}

void print_operator_between(Printer& printer, Process const& construct) {
    printer.end_piece();
    construct.pretty_print_operator(printer);
    printer.end_piece();
}

void print_infix(Printer& printer, Process const& construct) {
    print_left_operand(printer, construct, *construct.argument(0));
    construct.pretty_print_operator(printer);
    print_right_operand(printer, construct, *construct.argument(1));
}

void print_infix_in_pieces(Printer& printer, Process const& construct) {
    print_left_operand(printer, construct, *construct.argument(0));
    print_operator_between(printer, construct);
    print_right_operand(printer, construct, *construct.argument(1));
}

void print_postfix(Printer& printer, Process const& application, PrettyPrintable const& applied) {
    print_left_operand(printer, application, *application.argument(0));
    print_within_budget(printer, applied);
}

void print_bracketed_set(Printer& printer, char const* open, BitSet const& events,
                         char const* close) {
    printer << " " << open;
    if (printer.abbreviate) {
        printer << "…";
    } else {
        printer << " ";
        print_event_set(printer, events);
        printer << " ";
    }
    printer << close << " ";
}

void print_postfix_set(Printer& printer, char const* symbol, BitSet const& events) {
    printer << " " << symbol << " ";
    if (printer.abbreviate) {
        printer << "…";
    } else {
        print_event_set(printer, events);
    }
}

} // namespace Calder::ProcessCompiler

namespace Calder::PrettyPrinter {

void nary_operator(ProcessCompiler::Printer& printer, std::string const& text_when_empty,
                   ProcessCompiler::CompilableProcess const& term) {
    unsigned const count = term.argument_count();
    if (count == 0) {
        printer << text_when_empty;
        return;
    }
    for (unsigned index = 0; index < count; ++index) {
        if (index > 0) {
            print_operator_between(printer, term);
        }
        print_left_operand(printer, term, *term.argument(index));
    }
}

} // namespace Calder::PrettyPrinter
