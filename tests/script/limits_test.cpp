#include "tests/script/reading.h"

namespace Calder::Script {
namespace {

using ProcessCompiler::ProcessPointer;
using Testing::errors_of;
using Testing::printed_body;
using Testing::repeated;
using Testing::script_of;

constexpr std::size_t many = 1'000'000;

/// Terms of any depth: each level is `open` in front of and `close` behind the one below.
struct Nesting {
    char const* open;
    char const* close;
};

std::string nested(Nesting const& nesting, unsigned depth) {
    return "channel a P = " + repeated(nesting.open, depth - 1) + "STOP" +
           repeated(nesting.close, depth - 1);
}

TEST(Limits, a_term_at_the_nesting_limit_can_be_used_and_one_beyond_is_refused) {
    Nesting const nestings[] = {
        {"a -> ", ""},
        {"{a} -> ", ""},
        {"STOP ; ", ""},
        {"", " [> STOP"},
        {"", " /\\ STOP"},
        {"", " /+ {a} +\\ STOP"},
        {"(STOP [] ", ")"},
        {"(", " [+ {a} +] STOP)"},
        {"(STOP |~| ", ")"},
        {"(STOP ||| ", ")"},
        {"(", " [| {a} |] STOP)"},
        {"(STOP [{a} || {a}] ", ")"},
        {"(STOP [a <-> a] ", ")"},
        {"(", " [| {a} |> STOP)"},
        {"|| (a, p) : {({}, ", ")} @ [a] p"},
        {"", "[[a <- a]]"},
        {"", " \\ {a}"},
        {"", " |\\ {a}"},
    };
    for (Nesting const& nesting : nestings) {
        EXPECT_EQ(errors_of(nested(nesting, nesting_limit + 1)),
                  "1:11+1 the term is nested too deeply (more than 2000 levels)\n");
        auto const script = script_of(nested(nesting, nesting_limit));
        ASSERT_TRUE(script);
        ProcessPointer const term = script->find("P")->term;
        ProcessPointer const copy = term->clone(true);
        EXPECT_EQ(copy->hash_code(), term->hash_code());
        EXPECT_TRUE(*copy == *term);
        // What it prints can be read again, although chains of one operator have become flat.
        auto const again = script_of("channel a P = " + printed_body(*script, "P"));
        ASSERT_TRUE(again);
        EXPECT_EQ(printed_body(*again, "P"), printed_body(*script, "P"));
        term->visit_transitions(script->processes(),
                                [](unsigned, ProcessPointer const&) { return true; });
    }
}

TEST(Limits, depth_is_counted_through_names_and_told_once) {
    std::string const half = repeated("a -> ", nesting_limit / 2);
    struct {
        std::string definitions;
        char const* errors;
    } const rows[] = {
        {"A = " + half + "STOP B = " + half + "STOP C = A [] B", ""},
        {"A = " + half + "STOP\nB = a -> A\nC = " + half + "B\nD = C E = a -> D\nF = F2 F2 = C",
         "3:1+1 the term is nested too deeply (more than 2000 levels)\n"},
        {"A = " + half + "B\nB = " + half + "A", ""}, // a name on a cycle is one level
        {"A = " + half + half + "B\nB = a -> A [] a -> C\nC = " + half + half + "STOP\nD = C",
         "1:1+1 the term is nested too deeply (more than 2000 levels)\n"
         "3:1+1 the term is nested too deeply (more than 2000 levels)\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(errors_of(row.definitions + " channel a"), row.errors);
    }
}

TEST(Limits, nesting_of_text_costs_no_stack) {
    struct {
        char const* what;
        std::string script;
        std::string errors;
    } const rows[] = {
        {"parentheses", "P = " + repeated("(", many) + "STOP" + repeated(")", many), ""},
        {"open parentheses", "P = " + repeated("(", many),
         "1:1000005+1 unexpected end of the script, expected a process or a value\n"},
        {"closed wrongly", "P = " + repeated("(", many) + "STOP]",
         "1:1000009+1 unexpected ']', expected an operator, ')' or ','\n"},
        {"comments", "P = STOP" + repeated("{-", many) + repeated("-}", many), ""},
        {"open comments", "P = STOP" + repeated("{-", many),
         "1:9+2 the comment is never closed: '-}' is missing\n"},
        {"braces", "P = RUN(" + repeated("{", many) + repeated("}", many) + ")",
         "1:1+1 the term is nested too deeply (more than 2000 levels)\n"},
        {"a chain", "P = STOP" + repeated("[]STOP", many / 10), ""},
        {"prefixes", "channel a P = " + repeated("a->", many) + "STOP",
         "1:11+1 the term is nested too deeply (more than 2000 levels)\n"},
        {"patterns", "f(" + repeated("<", many / 10) + "x" + repeated(">", many / 10) + ") = x",
         "1:1+1 the term is nested too deeply (more than 2000 levels)\n"},
        {"fields of a channel",
         "channel a : " + repeated("Union({", many / 10) + "{1}" + repeated("})", many / 10),
         "1:13+5 this is nested too deeply\n"},
        {"fields of a datatype",
         "datatype T = t." + repeated("Union({", many / 10) + "{1}" + repeated("})", many / 10),
         "1:14+1 this is nested too deeply\n"},
        {"NUL bytes in a comment", "--" + std::string(many, '\0'),
         "1:3+1000000 a NUL byte may not stand in a script\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(errors_of(row.script), row.errors) << row.what;
    }
}

/// `N0 = prefix N1 N1 = prefix N2 … ` up to the definition of `last`.
std::string chain_of_names(unsigned length, std::string const& prefix, std::string const& last) {
    std::string script = "channel a ";
    for (unsigned index = 0; index < length; ++index) {
        std::string const next = index + 1 < length ? "N" + std::to_string(index + 1) : last;
        script += "N" + std::to_string(index) + " = " + prefix + next + " ";
    }
    return script;
}

TEST(Limits, chains_of_names_cost_no_stack) {
    constexpr unsigned length = 100'000;
    auto const cyclic = script_of(chain_of_names(length, "a -> ", "N0"));
    ASSERT_TRUE(cyclic);
    EXPECT_EQ(cyclic->processes().references().size(), length);
    EXPECT_EQ(printed_body(*cyclic, "N99999"), "a -> N0");

    auto const aliases = script_of(chain_of_names(length, "", "a -> STOP"));
    ASSERT_TRUE(aliases);
    EXPECT_EQ(aliases->find("N0")->term, aliases->find("N99999")->term);

    std::string const deep = errors_of(chain_of_names(length, "a -> ", "STOP"));
    EXPECT_NE(deep.find("+6 the term is nested too deeply"), std::string::npos);
    EXPECT_EQ(deep.find('\n') + 1, deep.size()) << "told more than once";

    EXPECT_NE(errors_of(chain_of_names(length, "", "N0")).find(" through 100000 names from the s"),
              std::string::npos);
}

TEST(Limits, many_errors_among_many_names_are_found_in_time) {
    std::string script;
    for (unsigned index = 0; index < 30'000; ++index) {
        script += "PROC" + std::to_string(index) + " = QROC" + std::to_string(index) + "\n";
    }
    ReadResult const result = read_script(script);
    EXPECT_EQ(result.diagnostics.size(), 30'000U);
    EXPECT_EQ(result.diagnostics[0].message,
              "the process 'QROC0' is not defined; did you mean 'PROC0'?");
    EXPECT_EQ(render_all(result.diagnostics, result.sources).substr(0, 17), "script:1:9: error");
}

TEST(Limits, events_are_counted_before_they_are_made) {
    struct {
        std::string script;
        std::string errors;
    } const rows[] = {
        {"channel a : {0..999999}", ""},
        // 100 events of 1,000,000 characters would fit on their own.
        {"channel a channel " + std::string(999'996, 'b') + " : {0..9}.{0..9}",
         "1:19+999996 the names of the events are too long: with those of '" +
             std::string(60, 'b') + "…' they would have more than 100000000 characters\n"},
        {"channel " + std::string(1000, 'a') + " : {1..100000}",
         "1:9+1000 the names of the events are too long: with those of '" + std::string(60, 'a') +
             "…' they would have more than 100000000 characters\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(errors_of(row.script), row.errors);
    }
}

} // namespace
} // namespace Calder::Script
