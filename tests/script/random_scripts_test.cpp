#include "tests/script/reading.h"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

namespace Calder::Script {
namespace {

using Testing::printed_body;

char const* const pieces[] = {
    "P",          "Q",
    "a",          "b.0",
    "b",          "tick",
    "tau",        "P = ",
    "Q = ",       "STOP",
    "SKIP",       "RUN",
    "CHAOS",      "channel ",
    "0",          "01",
    "4294967296", "..",
    ".",          ",",
    ":",          "@",
    "(",          ")",
    "{",          "}",
    "{|",         "|}",
    "[[",         "]]",
    "<-",         "<->",
    "->",         " -> ",
    "[",          "]",
    "[|",         "|]",
    "|>",         "[]",
    "[>",         "/\\",
    "/+",         "+\\",
    "[+",         "+]",
    "|~|",        "||",
    "|||",        "\\",
    "|\\",        ";",
    "=",          "--",
    "{-",         "-}",
    "\n",         " ",
    "\t",         "\r\n",
    "é",          "$",
    "\xFF",       "|| (a, p) : {(",
    ")} @ [a] p", "channel a, b : {0..1}\n",
};

/// Whether a place lies in the text; right behind a line counts as in it.
bool lies_in(Location const& place, std::string const& text) {
    std::size_t start = 0;
    for (unsigned line = 1; line < place.line; ++line) {
        start = text.find('\n', start) + 1;
        if (start == 0) {
            return false;
        }
    }
    std::size_t const bytes = std::min(text.find('\n', start), text.size()) - start;
    return place.line >= 1 && place.column >= 1 && place.length >= 1 &&
           place.column + place.length - 1 <= bytes + 1;
}

void check_reading(std::string const& text) {
    ReadResult const result = read_script(text);
    RC_ASSERT((result.script != nullptr) == result.diagnostics.empty());
    for (Diagnostic const& diagnostic : result.diagnostics) {
        RC_ASSERT(lies_in(diagnostic.location, text));
        RC_ASSERT(!diagnostic.message.empty());
    }
    auto const place = [](Diagnostic const& d) {
        return std::tuple(d.location.line, d.location.column);
    };
    RC_ASSERT(std::is_sorted(
        result.diagnostics.begin(), result.diagnostics.end(),
        [&](Diagnostic const& a, Diagnostic const& b) { return place(a) < place(b); }));
    RC_ASSERT(render_all(result.diagnostics, "f", text).empty() == result.diagnostics.empty());
}

RC_GTEST_PROP(RandomScripts, soups_of_pieces_are_read_or_refused_with_a_place, ()) {
    auto const numbers = *rc::gen::container<std::vector<std::size_t>>(
        rc::gen::inRange<std::size_t>(0, std::size(pieces)));
    std::string text;
    for (std::size_t const number : numbers) {
        text += pieces[number];
    }
    check_reading(text);
}

RC_GTEST_PROP(RandomScripts, any_bytes_are_read_or_refused_with_a_place, ()) {
    check_reading(*rc::gen::container<std::string>(rc::gen::arbitrary<char>()));
}

/// A random term, operands in parentheses.
std::string random_term(std::mt19937& random, int depth) {
    char const* const leaves[] = {"STOP", "SKIP", "RUN({a, tick})", "CHAOS({| b |})", "P", "Q"};
    char const* const prefixes[] = {"a -> ", "b.1 -> ", "{| b |} -> ", "{{a, b.0}} -> "};
    char const* const postfixes[] = {"[[a <- b.0, a <- b.1]]", " \\ {| b |}", " |\\ {a}"};
    char const* const chains[] = {" [] ", " |~| ", " ||| ", " [+ {a} +] ", " [| {tick, b.0} |] "};
    char const* const infixes[] = {" ; ",
                                   " [> ",
                                   " /\\ ",
                                   " /+ {a} +\\ ",
                                   " [{a} || {| b |}] ",
                                   " [a <-> b.0, tick <-> tick] ",
                                   " [| {} |> "};
    auto const one_of = [&](auto const& texts) { return texts[random() % std::size(texts)]; };
    if (depth == 0) {
        return one_of(leaves);
    }
    auto const operand = [&] { return "(" + random_term(random, depth - 1) + ")"; };
    std::string const first = operand();
    switch (random() % 5) {
    case 0: return one_of(prefixes) + first;
    case 1: return first + one_of(postfixes);
    case 2: {
        std::string const infix = one_of(chains);
        return first + infix + operand() + (random() % 2 == 0 ? infix + operand() : "");
    }
    case 3: return "|| (a, p) : {({a}, " + first + ")({}, " + operand() + ")({a}, STOP)} @ [a] p";
    default: return first + one_of(infixes) + operand();
    }
}

RC_GTEST_PROP(RandomScripts, what_a_term_prints_is_read_as_what_prints_the_same, ()) {
    std::mt19937 random(*rc::gen::arbitrary<unsigned>());
    std::string const rest = "\nchannel a\nchannel b : {0, 1}\nP = a -> Q\nQ = b.0 -> P";
    ReadResult const first =
        read_script("T = " + random_term(random, *rc::gen::inRange(0, 5)) + rest);
    RC_ASSERT(first.script != nullptr);
    std::string const printed = printed_body(*first.script, "T");
    ReadResult const second = read_script("T = " + printed + rest);
    RC_ASSERT(second.script != nullptr);
    RC_ASSERT(printed_body(*second.script, "T") == printed);
}

} // namespace
} // namespace Calder::Script
