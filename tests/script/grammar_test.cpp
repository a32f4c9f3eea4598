#include "tests/script/syntax_text.h"

#include <string>

namespace Calder::Script {
namespace {

using Testing::syntax_of;

enum class Chain { none, left, right, flat };

/// An operator between two operands, as the notation describes it.
struct Infix {
    std::string symbol;
    std::string name;
    std::string parts; // what stands between the operands in the syntax
    int level;
    Chain chain;
};

Infix const infixes[] = {
    {" ; ", "sequential composition", " ", 3, Chain::right},
    {" [> ", "sliding choice", " ", 4, Chain::left},
    {" /\\ ", "interrupt", " ", 5, Chain::left},
    {" /+ {a} +\\ ", "synchronising interrupt", " {a} ", 5, Chain::left},
    {" [] ", "external choice", " ", 6, Chain::flat},
    {" [+ {a} +] ", "synchronising external choice", " {a} ", 6, Chain::flat},
    {" |~| ", "internal choice", " ", 7, Chain::flat},
    {" [| {a} |] ", "generalised parallel", " {a} ", 8, Chain::flat},
    {" [{a} || {|b|}] ", "alphabetised parallel", " {a} {|b|} ", 8, Chain::none},
    {" [a <-> b, c <-> d.0] ", "linked parallel", " a <-> b c <-> d.0 ", 8, Chain::none},
    {" [| {a} |> ", "exception", " {a} ", 8, Chain::none},
    {" ||| ", "interleaving", " ", 9, Chain::flat},
};

std::string applied(Infix const& infix, std::string const& left, std::string const& right) {
    return "(" + infix.name + " " + left + infix.parts + right + ")";
}

/// How `P first Q second R` is read; empty where parentheses are needed.
std::string reading_of(Infix const& first, Infix const& second) {
    std::string const to_the_left = applied(second, applied(first, "P", "Q"), "R");
    std::string const to_the_right = applied(first, "P", applied(second, "Q", "R"));
    if (first.level != second.level) {
        return first.level < second.level ? to_the_left : to_the_right;
    }
    if (first.name != second.name) {
        return "";
    }
    switch (first.chain) {
    case Chain::left: return to_the_left;
    case Chain::right: return to_the_right;
    case Chain::flat: return "(" + first.name + " P" + first.parts + "Q" + first.parts + "R)";
    case Chain::none: break;
    }
    return "";
}

TEST(Grammar, every_two_operators_meet_as_their_levels_say) {
    for (Infix const& first : infixes) {
        for (Infix const& second : infixes) {
            std::string const bare = "T = P" + first.symbol + "Q" + second.symbol + "R";
            std::string const reading = reading_of(first, second);
            if (!reading.empty()) {
                EXPECT_EQ(syntax_of(bare), reading) << bare;
            } else {
                std::size_t const place = bare.size() - second.symbol.size() + 1;
                std::string const start = "1:" + std::to_string(place);
                EXPECT_EQ(syntax_of(bare).substr(0, start.size() + 1), start + "+") << bare;
                EXPECT_NE(syntax_of(bare).find(" parentheses are needed: " + first.name),
                          std::string::npos)
                    << syntax_of(bare);
            }
            EXPECT_EQ(syntax_of("T = (P" + first.symbol + "Q)" + second.symbol + "R"),
                      applied(second, applied(first, "P", "Q"), "R"));
            EXPECT_EQ(syntax_of("T = P" + first.symbol + "(Q" + second.symbol + "R)"),
                      applied(first, "P", applied(second, "Q", "R")));
        }
    }
}

TEST(Grammar, prefix_renaming_and_hiding_bind_around_every_operator) {
    for (Infix const& infix : infixes) {
        std::string const s = infix.symbol;
        EXPECT_EQ(syntax_of("T = a -> P" + s + "{a} -> Q"),
                  applied(infix, "(prefix a P)", "(prefix {a} Q)"));
        EXPECT_EQ(syntax_of("T = P[[a <- b]]" + s + "Q[[a <- b]]"),
                  applied(infix, "(renaming P a <- b)", "(renaming Q a <- b)"));
        EXPECT_EQ(syntax_of("T = P" + s + "Q \\ {a}"),
                  "(hiding " + applied(infix, "P", "Q") + " {a})");
        EXPECT_NE(syntax_of("T = P \\ {a}" + s + "Q").find("1:13+"), std::string::npos);
        EXPECT_EQ(syntax_of("T = (P \\ {a})" + s + "Q"), applied(infix, "(hiding P {a})", "Q"));
    }
}

TEST(Grammar, reads_terms) {
    struct {
        char const* term;
        char const* syntax;
    } const rows[] = {
        {"STOP", "STOP"},
        {"((SKIP))", "SKIP"},
        {"RUN({})", "(RUN {})"},
        {"CHAOS({|a, b.0|})", "(CHAOS {|a, b.0|})"},
        {"CHAOS({||})", "(CHAOS {||})"},
        {"RUN({{a, b}})", "(RUN {{a, b}})"},
        {"RUN({{|a|}})", "(RUN {{|a|}})"},
        {"a -> b.0.x -> P", "(prefix a (prefix b.0.x P))"},
        {"a -> {b} -> {} -> P", "(prefix a (prefix {b} (prefix {} P)))"},
        {"{{a, b}} -> P", "(prefix {{a, b}} P)"},
        {"a -> P[[a <- b]]", "(prefix a (renaming P a <- b))"},
        {"(a -> P)[[a <- b, c <- d]][[b <- c]]",
         "(renaming (renaming (prefix a P) a <- b c <- d) b <- c)"},
        {"P \\ {a} \\ {b}", "(hiding (hiding P {a}) {b})"},
        {"P |\\ {a} |\\ {b}", "(projection (projection P {a}) {b})"},
        {"P [] Q [] R [] S", "(external choice P Q R S)"},
        {"(P [] Q) [] R [] S", "(external choice (external choice P Q) R S)"},
        {"(P [] Q [] R) |~| (P |~| Q)",
         "(internal choice (external choice P Q R) (internal choice P Q))"},
        {"P [tick <-> tick] Q", "(linked parallel P tick <-> tick Q)"},
        {"|| (a, p) : {({a}, P)({}, Q [] R)} @ [a] p",
         "(replicated alphabetised parallel {a} P {} (external choice Q R))"},
        {"P ||| || (a, p) : {({a}, P)} @ [a] p[[a <- b]]",
         "(interleaving P (renaming (replicated alphabetised parallel {a} P) a <- b))"},
        {"a", "a"},
        {"a -> a ; p", "(sequential composition (prefix a a) p)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(syntax_of(std::string("T = ") + row.term), row.syntax) << row.term;
    }
}

TEST(Grammar, reads_values) {
    struct {
        char const* term;
        char const* syntax;
    } const rows[] = {
        {"-1 + 2 * #s ^ <3>", "(^ (+ -1 (* 2 (# s))) <3>)"},
        {"a - b - c / d % e", "(- (- a b) (% (/ c d) e))"},
        {"not a == b and c < d or e", "(or (and (not (== a b)) (< c d)) e)"},
        {"if a then b else c and d", "(if a b (and c d))"},
        {"let x = 1 f(y, (z, _)) = y within f(x)", "(let x()=1 f(y, (z, _))=y f(x))"},
        {"(a, (b, c))", "(a, (b, c))"},
        {"<1..n, (a > b)>", "<1..n, (> a b)>"},
        {"<x, y | (x, y) <- s, (not x)>", "<x, y | (x, y) <- s | (not x)>"},
        {"{c.x.-1 | x <- S, y : T}", "{c.x.-1 | x <- S | y : T}"},
        {"{|c, d.0 | x <- S|}", "{|c, d.0 | x <- S|}"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(syntax_of(std::string("T = ") + row.term), row.syntax) << row.term;
    }
}

TEST(Grammar, reads_processes_over_values) {
    struct {
        char const* term;
        char const* syntax;
    } const rows[] = {
        {"c!x + 1?y:{0}$(z, _).w -> P", "(prefix c!(+ x 1)?y:{0}$(z, _).w P)"},
        {"a & b & c -> P [] Q", "(external choice (condition a (condition b (prefix c P))) Q)"},
        {"[] x : S, y <- T @ P ||| Q", "(external choice (interleaving P Q) | x : S | y <- T)"},
        {"P ; [| A |] x : S @ Q [] R",
         "(sequential composition P (generalised parallel A (external choice Q R) | x : S))"},
        {"|| x : S @ [A(x)] P(x)", "(alphabetised parallel A(x), P(x) | x : S)"},
        {"[a <-> b] x : s @ P", "(linked parallel a <-> b P | x : s)"},
        {"P[[a <- b, c <- d | x <- S]]", "(renaming P a <- b, c <- d | x <- S)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(syntax_of(std::string("T = ") + row.term), row.syntax) << row.term;
    }
}

TEST(Grammar, reads_declarations) {
    EXPECT_EQ(syntax_of("channel a"), "a");
    EXPECT_EQ(syntax_of("channel up, down : {0..4}.{ack, 7, 1..3}"),
              "up down {0..4}.{ack, 7, 1..3}");
    EXPECT_EQ(syntax_of("channel a P = STOP channel b"), "STOP");
    EXPECT_EQ(syntax_of("datatype T = a | b.S.{0..1}"), "T = a | b.S.{0..1}");
}

} // namespace
} // namespace Calder::Script
