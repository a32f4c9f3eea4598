#include "tests/script/reading.h"

namespace Calder::Script {
namespace {

using Testing::ErrorRow;
using Testing::errors_of;
using Testing::expect_errors;

TEST(SyntaxErrors, say_what_was_found_and_what_was_expected) {
    ErrorRow const rows[] = {
        {"a", "1:1+1 unexpected 'a', expected a definition\n"},
        {"P =", "1:4+1 unexpected end of the script, expected a process\n"},
        {"P = -- nothing\n\n", "1:4+1 unexpected end of the script, expected a process\n"},
        {"P = \nQ = STOP", "2:1+1 unexpected definition of 'Q', expected a process\n"},
        {"P = STOP STOP", "1:10+4 unexpected reserved word 'STOP', expected an operator or a "
                          "definition\n"},
        {"P = P Q", "1:7+1 unexpected 'Q', expected an operator, a definition, '.' or '->'\n"},
        {"P = (STOP", "1:10+1 unexpected end of the script, expected an operator or ')'\n"},
        {"P = ()", "1:6+1 unexpected ')', expected a process\n"},
        {"P = RUN STOP", "1:9+4 unexpected reserved word 'STOP', expected '('\n"},
        {"P = RUN(a)", "1:9+1 unexpected 'a', expected a set of events\n"},
        {"P = RUN({a b})", "1:12+1 unexpected 'b', expected '}', ',' or '.'\n"},
        {"P = {a, {|b|}} -> P", "1:9+2 unexpected '{|', expected a name\n"},
        {"P = {{}, b} -> P", "1:8+1 unexpected ',', expected '}'\n"},
        {"P = {} [] P", "1:8+2 unexpected '[]', expected '->'\n"},
        {"P = a.0 P", "1:9+1 unexpected 'P', expected '.' or '->'\n"},
        {"P = a. -> P", "1:8+2 unexpected '->', expected a name or a number\n"},
        {"P = P [[a -> b]]", "1:11+2 unexpected '->', expected '.' or '<-'\n"},
        {"P = P [[a <- b] Q", "1:15+1 unexpected ']', expected ',', '.' or ']]'\n"},
        {"P = P [| {} ] Q", "1:13+1 unexpected ']', expected '|]' or '|>'\n"},
        {"P = P [{}] Q", "1:10+1 unexpected ']', expected '||'\n"},
        {"P = P [] \\ Q", "1:10+1 unexpected '\\', expected a process\n"},
        {"P = P \\ Q", "1:9+1 unexpected 'Q', expected a set of events\n"},
        {"P = || (a) : {} @ [a] p", "1:10+1 unexpected ')', expected ','\n"},
        {"up.x = STOP", "1:1+2 unexpected 'up', expected a definition\n"},
        {"channel STOP", "1:9+4 unexpected reserved word 'STOP', expected a name\n"},
        {"channel a b", "1:11+1 unexpected 'b', expected a definition, ',' or ':'\n"},
        {"channel a : 0..3", "1:13+1 unexpected '0', expected '{'\n"},
        {"channel a : {0..}", "1:17+1 unexpected '}', expected a number\n"},
        {"channel a : {0},", "1:16+1 unexpected ',', expected a definition or '.'\n"},
    };
    expect_errors(rows);
}

TEST(SyntaxErrors, ask_for_parentheses) {
    ErrorRow const rows[] = {
        {"P = STOP /\\ STOP /+ {} +\\ STOP",
         "1:18+2 parentheses are needed: interrupt and synchronising interrupt bind equally "
         "tight\n"},
        {"P = STOP \\ {} ||| STOP",
         "1:15+3 parentheses are needed: '|||' binds tighter than the operator before it\n"},
        {"P = STOP |\\ {} [[a <- b]]",
         "1:16+2 parentheses are needed: '[[' binds tighter than the operator before it\n"},
    };
    for (ErrorRow const& row : rows) {
        EXPECT_NE(errors_of(row.script).find(row.errors), std::string::npos)
            << errors_of(row.script);
    }
    EXPECT_NE(errors_of("P = STOP [{}||{}] STOP [{}||{}] STOP")
                  .find("1:24+1 parentheses are needed: alphabetised parallel does not associate"),
              std::string::npos);
}

TEST(SyntaxErrors, of_every_definition_are_told_in_one_run) {
    ErrorRow const rows[] = {
        {"x y z\nP = ) ) (\nchannel 5 : 5\nQ = STOP\nR = \nchannel a :\nS = a ->",
         "1:1+1 unexpected 'x', expected a definition\n"
         "2:5+1 unexpected ')', expected a process\n"
         "3:9+1 unexpected '5', expected a name\n"
         "6:1+7 unexpected reserved word 'channel', expected a process\n"
         "7:1+1 unexpected definition of 'S', expected '{'\n"
         "7:9+1 unexpected end of the script, expected a process\n"},
        {"P = $ (\nQ = STOP §\nR = ]",
         "1:5+1 unexpected character '$'\n2:10+1 unexpected character '§'\n"
         "3:5+1 unexpected ']', expected a process\n"},
    };
    expect_errors(rows);
}

TEST(SyntaxErrors, do_not_cause_others) {
    ErrorRow const rows[] = {
        {"Q = P\nP = )", "2:5+1 unexpected ')', expected a process\n"},
        {"channel a b\nQ = b -> a -> STOP", "1:11+1 unexpected 'b', expected a definition, ',' "
                                            "or ':'\n"},
        {"event c\nQ = c -> STOP", "1:1+5 unexpected 'event', expected a definition\n"},
        {"Q = P [] a -> Q {- P = STOP", "1:17+2 the comment is never closed: '-}' is missing\n"},
        {"channel a\nP = a → P\nQ = P", "2:7+1 unexpected character '→'\n"},
        {"SKIP = STOP P = STOP", "1:1+4 'SKIP' is a reserved word and cannot be defined\n"},
    };
    expect_errors(rows);
}

TEST(SyntaxErrors, leave_what_is_right_to_be_checked) {
    EXPECT_EQ(errors_of("channel a\nP = a -> a -> STOP )\nQ = NONE [] {c} -> ]"),
              "2:20+1 unexpected ')', expected an operator or a definition\n"
              "3:5+4 the process 'NONE' is not defined\n"
              "3:14+1 the event 'c' is not declared\n"
              "3:20+1 unexpected ']', expected a process\n");
}

} // namespace
} // namespace Calder::Script
