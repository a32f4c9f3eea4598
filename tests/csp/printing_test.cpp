#include "tests/csp/terms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <streambuf>

namespace Calder::ProcessCompiler::CSP {
namespace {

using Testing::printed_by;

TEST(Printing, terms) {
    ProcessPointer const either = external({P, Q});
    struct {
        ProcessPointer term;
        char const* full;
        char const* abbreviated = nullptr; // the same where there is none
    } const rows[] = {
        {prefix(a, prefix(b, P)), "a -> b -> P", "a -> …"},
        {prefix(a, external({prefix(b, P), P})), "a -> (b -> P [] P)", "a -> …"},
        {prefix(tau, STOP), "tau -> (STOP)", "tau -> …"},
        {prefix(a, run({a})), "a -> RUN({a})", "a -> …"},
        {set_prefix({a, b}, P), "{{a, b}} -> P", "{…} -> …"},
        {set_prefix({}, set_prefix({a}, P)), "{{}} -> {{a}} -> P", "{…} -> …"},
        {set_prefix({a}, prefix(b, P)), "{{a}} -> (b -> P)", "{…} -> …"},
        {prefix(a, set_prefix({b}, P)), "a -> ({{b}} -> P)", "a -> …"},
        {set_prefix({a}, either), "{{a}} -> (P [] Q)", "{…} -> …"},

        {external({prefix(a, P), prefix(b, STOP)}), "a -> P [] b -> (STOP)", "a -> … [] b -> …"},
        {external({external({P, Q}), external({Q, P})}), "P [] Q [] Q [] P"},
        {STOP, "STOP"},
        {internal({P, either, P}), "P |~| P [] Q |~| P"},
        {internal({internal({P, Q}), P}), "P |~| Q |~| P"},
        {external({internal({P, Q}), P}), "(P |~| Q) [] P"},
        {internal({}), "STOP"},
        {interleave({P, prefix(a, P), P}), "P ||| a -> P ||| P", "P ||| a -> … ||| P"},
        {interleave({P, interleave({P, P})}), "P ||| P ||| P"},
        {interleave({SKIP, either}), "SKIP ||| P [] Q"},
        {external({interleave({P, P}), P}), "(P ||| P) [] P"},

        {sliding(sliding(P, Q), P), "P [> Q [> P"},
        {sliding(P, sliding(Q, P)), "P [> (Q [> P)"},
        {sliding(sequence(P, Q), interrupt(P, Q)), "P ; Q [> (P /\\ Q)"},
        {sequence(P, sequence(Q, P)), "P ; Q ; P"},
        {sequence(sequence(P, Q), P), "(P ; Q) ; P"},
        {sequence(prefix(a, P), sliding(P, Q)), "a -> P ; (P [> Q)", "a -> … ; (P [> Q)"},
        {interrupt(interrupt(P, Q), P), "P /\\ Q /\\ P"},
        {interrupt(P, interrupt(Q, P)), "P /\\ (Q /\\ P)"},
        {interrupt(sliding(P, Q), either), "P [> Q /\\ (P [] Q)"},

        {run({b, a}), "RUN({a, b})", "RUN(…) "},
        {run({}), "RUN({})", "RUN(…) "},
        {chaos({b, a}), "CHAOS({a, b})", "CHAOS(…) "},

        {parallel({a}, {P, either, P}), "P [| {tick, a} |] P [] Q [| {tick, a} |] P",
         "P [|…|] P [] Q [|…|] P"},
        {parallel({}, {parallel({}, {P, Q}), P}), "(P [| {tick} |] Q) [| {tick} |] P",
         "(P [|…|] Q) [|…|] P"},
        {parallel({}, {}), "SKIP"},
        {alphabetised({{a}, {}}, {P, either}),
         "|| (a, p) : {({tick, a}, P)({tick}, P [] Q)} @ [a] p", "P […||…] P [] Q"},
        {alphabetised({}, {}), "|| (a, p) : {} @ [a] p", "SKIP"},
        {linked({{a, b}}, P, linked({}, P, Q)), "P [a <-> b, tick <-> tick] (P [tick <-> tick] Q)",
         "P […<->…] (P […<->…] Q)"},

        {hide(either, {b, a}), "P [] Q \\ {a, b}", "P [] Q \\ …"},
        {hide(hide(P, {b}), {a}), "P \\ {b} \\ {a}", "P \\ … \\ …"},
        {hide(project(P, {b}), {a}), "(P |\\ {b}) \\ {a}", "(P |\\ …) \\ …"},
        {project(P, {}), "P |\\ {}", "P |\\ …"},
        {rename(rename(P, {}), {{a, b}}), "P[[]][[a <- b]]", "P[[…]][[…]]"},
        {rename(prefix(a, P), {{a, b}}), "(a -> P)[[a <- b]]", "(a -> …)[[…]]"},
        {prefix(a, rename(P, {{a, b}})), "a -> P[[a <- b]]", "a -> …"},

        {exception({a}, exception({}, P, Q), prefix(a, P)), "(P [| {} |> Q) [| {a} |> a -> P",
         "(P [|…|> Q) [|…|> a -> …"},
        {sync_choice({a}, {P, sync_choice({a}, {P, Q}), Q}),
         "P [+ {a} +] P [+ {a} +] Q [+ {a} +] Q", "P [+…+] P [+…+] Q [+…+] Q"},
        {sync_choice({a}, {P, sync_choice({}, {P, Q})}), "P [+ {a} +] (P [+ {} +] Q)",
         "P [+…+] (P [+…+] Q)"},
        {sync_choice({a}, {}), "STOP"},
        {sync_interrupt({a}, sync_interrupt({a}, P, Q), P), "P /+ {a} +\\ Q /+ {a} +\\ P",
         "P /+…+\\ Q /+…+\\ P"},
        {sync_interrupt({a}, P, sync_interrupt({a}, Q, P)), "P /+ {a} +\\ (Q /+ {a} +\\ P)",
         "P /+…+\\ (Q /+…+\\ P)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
        EXPECT_EQ(text(*row.term, true), row.abbreviated == nullptr ? row.full : row.abbreviated);
    }
}

TEST(Printing, operators_alone_and_in_words) {
    struct {
        ProcessPointer term;
        char const* symbol;
        char const* description;
    } const rows[] = {
        {prefix(a, P), "->", "Prefix a"},
        {set_prefix({a, b}, P), "->", "Prefix event set:\n    {a, b}"},
        {external({P, Q}), " [] ", "External Choice"},
        {internal({P, Q}), " |~| ", "Internal Choice"},
        {interrupt(P, Q), " /\\ ", "Interrupt"},
        {interleave({P, Q}), " ||| ", "Interleave"},
        {sequence(P, Q), " ; ", "Sequential Composition"},
        {sliding(P, Q), " [> ", "Sliding Choice"},
        {chaos({a, b}), "CHAOS", "Chaos over event set:\n    {a, b}"},
        {run({}), "RUN", "Run over event set:\n    {}"},
        {alphabetised({{a}, {b}}, {P, Q}), " […||…] ",
         "Alphabetised Parallel with process alphabets:\n    0: {tick, a}\n    1: {tick, b}\n"},
        {exception({a}, P, Q), " [| {a} |> ", "Exception with event set:\n    {a}"},
        {parallel({a}, {P, Q}), " [| {tick, a} |] ",
         "Generalised Parallel synchronising:\n    {tick, a}"},
        {linked({{a, b}}, P, Q), " [a <-> b, tick <-> tick] ",
         "Link Parallel synchronising:\n    a <-> b\n    tick <-> tick\n"},
        {hide(P, {a}), " \\ {a}", "Hiding event set:\n    {a}"},
        {rename(P, {{c, a}, {a, b}}), nullptr, "Rename with event map:\n    a -> b\n    c -> a\n"},
        {rename(P, {}), "[[]]", "Rename with event map:\n"},
        {sync_choice({a}, {P, Q}), " [+ {a} +] ",
         "Synchronising External Choice synchronising on:\n    {a}"},
        {sync_interrupt({a}, P, Q), " /+ {a} +\\ ",
         "Synchronising Interrupt synchronising on:\n    {a}"},
        {project(P, {a}), " |\\ {a}", "Projecting event set:\n    {a}"},
    };
    for (auto const& row : rows) {
        if (row.symbol != nullptr) { // of several pairs in no promised order
            EXPECT_EQ(
                printed_by(session(), [&](Printer& p) { row.term->pretty_print_operator(p); }),
                row.symbol);
        }
        EXPECT_EQ(Testing::description_of(session(), *row.term), row.description);
    }
    EXPECT_EQ(printed_by(session(),
                         [](Printer& p) {
                             linked({{a, b}}, P, Q)->pretty_print_operator_description(p);
                             p << "after";
                         }),
              "Link Parallel synchronising:\n    a <-> b\n    tick <-> tick\nafter")
        << "the indentation is taken back";
}

TEST(Printing, breaks_lines_only_beside_the_operators_of_chains_and_exceptions) {
    ProcessPointer const whole[] = {
        prefix(a, prefix(b, P)),
        sliding(P, Q),
        sequence(P, Q),
        interrupt(P, Q),
        linked({}, P, Q),
        sync_interrupt({}, P, Q),
        hide(P, {a}),
        rename(P, {}),
        alphabetised({{a}, {b}}, {P, Q}),
    };
    ProcessPointer const broken[] = {
        external({P, Q}),     internal({P, Q}),        interleave({P, Q}),
        parallel({}, {P, Q}), sync_choice({}, {P, Q}), exception({}, P, Q),
    };
    auto const lines = [](Term term) {
        std::string const printed = printed_by(session(), [&](Printer& printer) {
            printer.line_width = 1;
            term->pretty_print(printer);
        });
        return 1 + std::count(printed.begin(), printed.end(), '\n');
    };
    for (Term term : whole) {
        EXPECT_EQ(lines(term), 1) << text(*term);
    }
    for (Term term : broken) {
        EXPECT_EQ(lines(term), 3) << text(*term);
    }
}

TEST(Printing, of_a_postfix_operator_is_its_own_whatever_it_is_asked_with) {
    ProcessPointer const other = project(P, {c});
    struct {
        OperatorPointer op;
        char const* printed;
    } const rows[] = {{new HideOperator(BitSet{a}), "P \\ {a}"},
                      {new ProjectOperator(BitSet{a}), "P |\\ {a}"},
                      {new RenameOperator({{a, b}}), "P[[a <- b]]"}};
    for (auto const& row : rows) {
        EXPECT_EQ(printed_by(session(),
                             [&](Printer& printer) {
                                 row.op->pretty_print_operator_process(
                                     printer, static_cast<OperatorProcess const&>(*other));
                             }),
                  row.printed);
    }
}

/// Fails after some bytes.
class FullDevice : public std::streambuf {
  public:
    explicit FullDevice(int room) : m_room(room) {}

  protected:
    int overflow(int character) override { return m_room-- > 0 ? character : traits_type::eof(); }

  private:
    int m_room;
};

TEST(Printing, takes_the_indentation_back_when_a_description_is_left_by_an_exception) {
    for (ProcessPointer const& term :
         {alphabetised({{a}}, {P}), linked({{a, b}}, P, Q), rename(P, {{a, b}})}) {
        FullDevice device(60); // more than the title, less than the whole
        std::ostream stream(&device);
        stream.exceptions(std::ios_base::badbit);
        Printer printer(stream, &session());
        printer.indent = 20;
        EXPECT_THROW(term->pretty_print_operator_description(printer), std::ios_base::failure);
        EXPECT_EQ(printer.indent, 20U);
        printer.silenced = true;
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
