#include "tests/script/reading.h"

namespace Calder::Script {
namespace {

using Testing::ErrorRow;
using Testing::errors_of;
using Testing::expect_errors;

TEST(TermErrors, of_names) {
    ErrorRow const rows[] = {
        {"P = Q", "1:5+1 the process 'Q' is not defined\n"},
        {"PHIL = STOP FORK = PHLI [] Fork",
         "1:20+4 the process 'PHLI' is not defined; did you mean 'PHIL'?\n"
         "1:28+4 the process 'Fork' is not defined\n"},
        {"channel a : {0} P = a [] a.0 -> a",
         "1:21+1 the process 'a' is not defined: 'a' is an event\n"
         "1:33+1 the process 'a' is not defined: 'a' is an event\n"},
        {"P = STOP\nQ = STOP\nP = P\nP = Q",
         "3:1+1 the process 'P' is already defined in line 1\n"
         "4:1+1 the process 'P' is already defined in line 1\n"},
        {"tau = STOP P = tau", "1:1+3 'tau' may not be written: it is the silent event\n"
                               "1:16+3 'tau' may not be written: it is the silent event\n"},
    };
    expect_errors(rows);
}

TEST(TermErrors, recursion_without_a_guard) {
    ErrorRow const rows[] = {
        {"P = P", "1:1+1 recursion without a guard: P runs P from the start\n"},
        {"channel a\nQ = a -> P\nP = STOP [] R\nR = Q [] P",
         "3:1+1 recursion without a guard: P runs R, R runs P from the start\n"},
        {"channel a P = b -> P [] P", "1:11+1 recursion without a guard: P runs P from the start\n"
                                      "1:15+1 the event 'b' is not declared\n"},
        {"A=B B=C C=D D=E E=F F=G G=H H=I I=A",
         "1:1+1 recursion without a guard: A runs B, B runs C, C runs D, D runs E, E runs F, F "
         "runs G, G runs H, H runs I and so on through 9 names from the start\n"},
    };
    expect_errors(rows);
}

TEST(TermErrors, a_chain_has_one_set) {
    struct {
        char const* open;
        char const* close;
    } const operators[] = {{"[+", "+]"}, {"[|", "|]"}, {"/+", "+\\"}};
    std::string const message = "parentheses are needed: this set is not that of the operator";
    for (auto const& row : operators) {
        auto const infix = [&](char const* set) {
            return std::string(" ") + row.open + " " + set + " " + row.close + " ";
        };
        struct {
            std::string term;
            char const* place; // null when it is right
        } const terms[] = {
            {"STOP" + infix("{a, b}") + "STOP" + infix("{b, a}") + "STOP", nullptr},
            {"STOP" + infix("{a, b}") + "STOP" + infix("{| b, a |}") + "STOP", nullptr},
            {"STOP" + infix("{a}") + "STOP" + infix("{b}") + "STOP", "\n1:41+1 "},
            {"STOP" + infix("{a}") + "STOP" + infix("{ }") + "STOP", "\n1:41+1 "},
            {"(STOP" + infix("{a}") + "STOP)" + infix("{b}") + "STOP", nullptr},
            {"STOP" + infix("{a}") + "STOP" + infix("{c}") + "STOP", nullptr},
        };
        for (auto const& term : terms) {
            std::string const errors = "\n" + errors_of("channel a, b P = " + term.term);
            EXPECT_EQ(errors.find(message) != std::string::npos, term.place != nullptr) << errors;
            if (term.place != nullptr) {
                EXPECT_NE(errors.find(term.place + message), std::string::npos) << errors;
            }
        }
    }
}

TEST(TermErrors, of_links_and_of_replicated_parallel) {
    struct {
        char const* script;
        char const* error;
    } const rows[] = {
        {"channel a P = STOP [a <-> tick] STOP", "1:27+4 'tick' may stand only in a set"},
        {"channel a P = STOP [tick <-> tick, tick <-> a] STOP", "1:36+4 'tick' may stand only"},
        {"channel a P = STOP[[tick <- a]]", "1:21+4 'tick' may stand only in a set"},
        {"channel a P = STOP[[a <- tick]]", "1:26+4 'tick' may stand only in a set"},
        {"P = || (a, p) : {} @ [a] p", "1:5+2 a replicated alphabetised parallel needs at least "},
        {"P = || (A, p) : {({}, STOP)} @ [p] q", "1:9+1 'A' must be 'a': the letters of a rep"},
        {"P = || (a, p) : {({}, STOP)} @ [p] q", "1:33+1 'p' must be 'a': the letters of a rep"},
        {"P = || (a, p) : {({}, STOP)} @ [a] q", "1:36+1 'q' must be 'p': the letters of a rep"},
    };
    for (auto const& row : rows) {
        EXPECT_NE(errors_of(row.script).find(row.error), std::string::npos)
            << errors_of(row.script);
    }
    EXPECT_EQ(errors_of("P = STOP [tick <-> tick] STOP").find("may stand"), std::string::npos);
}

} // namespace
} // namespace Calder::Script
