#include "process_compiler/printing.h"
#include "tests/support/fake_process.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakePointer;
using Testing::FakeProcess;
using Testing::printed_by;

FakePointer operand(unsigned kind, unsigned precedence) {
    FakePointer process(new FakeProcess("P"));
    process->own_kind = kind;
    process->precedence = precedence;
    return process;
}

TEST(Printing, parentheses_follow_precedence_and_associativity) {
    constexpr unsigned own = 7;
    constexpr unsigned other = 8;
    struct {
        unsigned associativity; // of the construct, whose precedence is 5
        unsigned operand_kind;
        unsigned operand_precedence;
        char const* left;
        char const* right;
    } const rows[] = {
        {left_associative, other, 4, "P", "P"},     {left_associative, other, 5, "(P)", "(P)"},
        {left_associative, other, 6, "(P)", "(P)"}, {left_associative, own, 5, "P", "(P)"},
        {right_associative, other, 4, "P", "P"},    {right_associative, other, 5, "(P)", "(P)"},
        {right_associative, own, 5, "(P)", "P"},    {non_associative, other, 4, "P", "P"},
        {non_associative, own, 5, "(P)", "(P)"},    {non_associative, own, 0, "(P)", "(P)"},
    };
    Session const session;
    for (auto const& row : rows) {
        FakePointer const construct = operand(own, 5);
        construct->associativity = row.associativity;
        FakePointer const inner = operand(row.operand_kind, row.operand_precedence);
        EXPECT_EQ(
            printed_by(session, [&](Printer& p) { print_left_operand(p, *construct, *inner); }),
            row.left);
        EXPECT_EQ(
            printed_by(session, [&](Printer& p) { print_right_operand(p, *construct, *inner); }),
            row.right);
    }
}

FakePointer construct_over(std::vector<ProcessPointer> const& operands) {
    OwningArray<ProcessPointer> arguments(operands.size());
    std::copy(operands.begin(), operands.end(), arguments.begin());
    FakePointer construct(new FakeProcess("or", arguments));
    construct->precedence = 5;
    construct->own_kind = 7;
    construct->associativity = left_associative;
    return construct;
}

TEST(Printing, a_long_chain_is_broken_beside_its_operators_and_cut_at_the_budget) {
    FakePointer const chain =
        construct_over({operand(8, 1), operand(8, 1), operand(8, 1), operand(8, 1)});
    struct {
        unsigned width;
        std::int32_t budget;
        char const* text;
    } const rows[] = {
        {6, -1, "P or P\n or P\n or P"},
        {Printer::no_line_width, -1, "P or P or P or P"},
        {Printer::no_line_width, 6, "P or P"},
        {Printer::no_line_width, 2, "P or "},
    };
    Session const session;
    for (auto const& row : rows) {
        EXPECT_EQ(printed_by(session,
                             [&](Printer& p) {
                                 p.line_width = row.width;
                                 p.remaining_characters = row.budget;
                                 PrettyPrinter::nary_operator(p, "", *chain);
                             }),
                  row.text);
    }
}

TEST(Printing, events_and_sets_print_by_the_session_while_the_budget_lasts) {
    Session session;
    unsigned const a = session.declare_event("a");
    struct {
        std::int32_t budget;
        std::function<void(Printer&)> print;
        char const* text;
    } const rows[] = {
        {-1, [&](Printer& p) { print_event(p, a); }, "a"},
        {-1, [&](Printer& p) { print_event(p, 99); }, ""},
        {-1,
         [&](Printer& p) {
             print_event_set(p, {tick, a});
         },
         "{tick, a}"},
        {-1, [&](Printer& p) { print_event_set_description(p, "Set:", {a}); }, "Set:\n    {a}"},
        {4, [&](Printer& p) { print_event_set_description(p, "Set:", {a}); }, "Set:\n"},
        {0, [&](Printer& p) { print_event_set(p, {a}); }, ""},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(printed_by(session,
                             [&](Printer& p) {
                                 p.remaining_characters = row.budget;
                                 row.print(p);
                                 EXPECT_EQ(p.indent, 0U);
                             }),
                  row.text);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler
