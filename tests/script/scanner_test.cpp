#include "script/scanner.h"
#include "tests/script/reading.h"

#include <algorithm>

namespace Calder::Script {
namespace {

using Testing::lines_of;

/// The tokens with a blank between two, a definition as `P=`, a bad one as `?`; then the errors.
std::string tokens_of(std::string_view text) {
    Diagnostics diagnostics;
    Sources sources{{"script", std::string(text)}};
    TokenList const list = scan(sources, {}, diagnostics);
    std::string result;
    for (unsigned token = 0; list[token].kind != Parser::token::END; ++token) {
        result += token == 0 ? "" : " ";
        result += list[token].kind == Parser::token::BAD ? "?" : list.text_of(token);
        result += list[token].kind == Parser::token::DEFINED_NAME ? "=" : "";
    }
    std::string const errors = lines_of(diagnostics);
    return result + (errors.empty() ? "" : "\n" + errors);
}

TEST(Scanner, takes_the_longest_token) {
    struct {
        char const* text;
        char const* tokens;
    } const rows[] = {
        {"", ""},
        {"channel up:{0..4}.{ack,7}", "channel up : { 0 .. 4 } . { ack , 7 }"},
        {"up.0.1->_x'9", "up . 0 . 1 -> _x'9"},
        {"P[|{|a|}|]Q[|{a}|>R", "P [| {| a |} |] Q [| { a } |> R"},
        {"P[[a<-b]]\\{a}|\\{}", "P [[ a <- b ]] \\ { a } |\\ { }"},
        {"P[a<->b]Q[{}||{}]R|||S||T", "P [ a <-> b ] Q [ { } || { } ] R ||| S || T"},
        {"P/\\Q/+{a}+\\R[>S;T", "P /\\ Q /+ { a } +\\ R [> S ; T"},
        {"P[]Q[+{||}+]R|~|S@(", "P [] Q [+ {| |} +] R |~| S @ ("},
        {"STOPS SKIPx RUN_ CHAOS' channels", "STOPS SKIPx RUN_ CHAOS' channels"},
        {"P=Q R\n  =S", "P= = Q R= = S"},
        {"P==Q!=R<=S>=T<U>V", "P == Q != R <= S >= T < U > V"},
        {"c!x?y$z:-1+2*3/4%5^#s&b", "c ! x ? y $ z : - 1 + 2 * 3 / 4 % 5 ^ # s & b"},
        {"f(x<-1)=<-1,x<-s>", "f= ( x <- 1 ) = < - 1 , x <- s >"},
        {"=P.x=y", "= P . x = y"},
        {"assert P[T=Q[F=R[FD=S:[x]:<>", "assert P [T= Q [F= R [FD= S :[ x ] : < >"},
        {"asserts [ T= [FT= [T =", "asserts [ T = [ FT = [ T ="},
        {"x:[]y:[[z : [a]", "x :[ ] y :[ [ z : [ a ]"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(tokens_of(row.text), row.tokens);
    }
}

TEST(Scanner, comments_and_blanks_are_no_tokens) {
    struct {
        std::string_view text;
        char const* tokens;
    } const rows[] = {
        {"a--b\nc -- \xC3\xA9 {- \n-- -}\nd", "a c d"},
        {"a{-b-}c{- {- -} -} d {--} e {---} f", "a c d e f"},
        {"a {- -- -} b", "a b"},
        {"\xEF\xBB\xBF"
         "a\r\nb\t\v\fc",
         "a b c"},
        {"P -- what it is\n = Q", "P= = Q"},
        {"a\n {- b {- c -}\n d", "a ?\n2:2+2 the comment is never closed: '-}' is missing\n"},
        {"{-}", "?\n1:1+2 the comment is never closed: '-}' is missing\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(tokens_of(row.text), row.tokens) << row.text;
    }
}

TEST(Scanner, a_run_of_bad_characters_is_one_error_and_one_token) {
    using namespace std::string_view_literals;
    struct {
        std::string_view text;
        char const* tokens;
    } const rows[] = {
        {"a ~`€; b", "a ? ; b\n1:3+3 unexpected character '~'\n"},
        {"a\n~\n~b", "a ? ? b\n2:1+1 unexpected character '~'\n3:1+1 unexpected character '~'\n"},
        {"é≠~ a 😀b", "? a ? b\n1:1+3 unexpected character 'é'\n1:7+1 unexpected character '😀'\n"},
        {"a \u2264 b \u2208 c",
         "a ? b ? c\n1:3+1 unexpected character '\u2264': write '<='\n"
         "1:7+1 unexpected character '\u2208': write 'member(x, S)', or 'x <- S' in a set\n"},
        {"a -} b", "a ? b\n1:3+2 '-}' closes no comment\n"},
        {"a \x07 \x7F \xC2\x85",
         "a ? ? ?\n1:3+1 unexpected character U+0007\n1:5+1 unexpected character U+007F\n"
         "1:7+1 unexpected character U+0085\n"},
        {"a\0\0b\0"sv, "a ? b ?\n1:2+2 a NUL byte may not stand in a script\n"
                       "1:5+1 a NUL byte may not stand in a script\n"},
        {"-- \0 {- \0\n{-\0-}b"sv, "b\n1:4+1 a NUL byte may not stand in a script\n"
                                   "1:9+1 a NUL byte may not stand in a script\n"
                                   "2:3+1 a NUL byte may not stand in a script\n"},
        {"{- é\xFF\xFEx -} a", "a\n1:5+2 this is not UTF-8 text\n"},
        {"a \xC3 b", "a ? b\n1:3+1 this is not UTF-8 text\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(tokens_of(row.text), row.tokens) << row.text;
    }
}

TEST(Scanner, only_well_formed_sequences_are_characters) {
    for (std::string_view const text :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\xF0\x9F\x98"}) {
        // Every byte counts as a character of its own.
        EXPECT_EQ(tokens_of(text),
                  "?\n1:1+" + std::to_string(text.size()) + " this is not UTF-8 text\n");
    }
    for (std::string_view const text :
         {"\xC2\xA0", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        std::string const tokens = tokens_of(text);
        EXPECT_TRUE(tokens.starts_with("?\n1:1+1 unexpected character '" + std::string(text) + "'"))
            << tokens;
        EXPECT_EQ(std::count(tokens.begin(), tokens.end(), '\n'), 2) << tokens;
    }
}

} // namespace
} // namespace Calder::Script
