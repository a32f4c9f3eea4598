#pragma once

#include "process_compiler/process.h"

#include <string>

namespace Calder::ProcessCompiler {

// What the constructs print alike. All of it stops where the printer's budget is spent.

/// Lets a printer write a line only up to the piece that reaches this many characters, at least 0,
/// and build no more of it than it takes to know that: terms may have texts of terabytes.
CALDER_PROCESS_COMPILER_EXPORT void cut_text(Printer& printer, std::int32_t characters);

/// Prints an operand, an event or a set while the printer's character budget is not spent.
CALDER_PROCESS_COMPILER_EXPORT void print_within_budget(Printer& printer,
                                                        PrettyPrintable const& printed);

/// The event of a number, by the printer's session; a number without an event prints nothing.
CALDER_PROCESS_COMPILER_EXPORT void print_event(Printer& printer, unsigned event);

/// The set as the printer's session renders it, with its braces.
CALDER_PROCESS_COMPILER_EXPORT void print_event_set(Printer& printer, BitSet const& events);

/// A description: the title on a line of its own, then the set, indented by 4 more.
CALDER_PROCESS_COMPILER_EXPORT void print_event_set_description(Printer& printer, char const* title,
                                                                BitSet const& events);

/// A description: the title on a line of its own; while this object lives, what is printed is
/// indented by 4 more.
class CALDER_PROCESS_COMPILER_EXPORT IndentedDescription {
  public:
    /// The printer must outlive it.
    IndentedDescription(Printer& printer, char const* title);
    ~IndentedDescription();

    IndentedDescription(IndentedDescription const&) = delete;
    IndentedDescription& operator=(IndentedDescription const&) = delete;

  private:
    Printer& m_printer;
};

/// An operand on the side where a left-associative construct may nest bare: the first of two
/// operands, the only one of a postfix operator, each one of an n-ary construct.
///
/// The rule of parentheses: bare when the operand is another operator that binds tighter than the
/// construct, or when it is the same operator and the construct associates to this side; otherwise
/// between "(" and ")".
CALDER_PROCESS_COMPILER_EXPORT void print_left_operand(Printer& printer, Process const& construct,
                                                       Process const& operand);

/// An operand on the other side: a prefix's continuation, the second of two operands.
CALDER_PROCESS_COMPILER_EXPORT void print_right_operand(Printer& printer, Process const& construct,
                                                        Process const& operand);

/// The construct's operator symbol as a piece of its own, so that a line may be broken on either
/// side of it.
CALDER_PROCESS_COMPILER_EXPORT void print_operator_between(Printer& printer,
                                                           Process const& construct);

/// A construct with two operands: the first, the operator, the second, all in one piece.
CALDER_PROCESS_COMPILER_EXPORT void print_infix(Printer& printer, Process const& construct);

/// The same with the operator as a piece of its own.
CALDER_PROCESS_COMPILER_EXPORT void print_infix_in_pieces(Printer& printer,
                                                          Process const& construct);

/// An operator with one operand: the operand, then the operator.
CALDER_PROCESS_COMPILER_EXPORT void print_postfix(Printer& printer, Process const& application,
                                                  PrettyPrintable const& applied);

/// An infix operator over a set, such as " [| {a} |] " for "[|" and "|]"; " [|…|] " abbreviated.
CALDER_PROCESS_COMPILER_EXPORT void print_bracketed_set(Printer& printer, char const* open,
                                                        BitSet const& events, char const* close);

/// A postfix operator over a set, such as " \ {a}" for "\"; " \ …" abbreviated.
CALDER_PROCESS_COMPILER_EXPORT void print_postfix_set(Printer& printer, char const* symbol,
                                                      BitSet const& events);

} // namespace Calder::ProcessCompiler

namespace Calder::PrettyPrinter {

/// Prints a construct with any number of arguments: each by the rule for left operands, joined by
/// the construct's operator; `text_when_empty` when it has none. Serves processes and applied
/// operators alike.
CALDER_PROCESS_COMPILER_EXPORT void nary_operator(ProcessCompiler::Printer& printer,
                                                  std::string const& text_when_empty,
                                                  ProcessCompiler::CompilableProcess const& term);

} // namespace Calder::PrettyPrinter
