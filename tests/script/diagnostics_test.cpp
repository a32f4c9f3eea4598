#include "script/diagnostics.h"

#include <gtest/gtest.h>

namespace Calder::Script {
namespace {

TEST(Diagnostics, are_rendered_with_their_line_and_a_caret) {
    std::string const wide(200, 'x');
    struct {
        Location location;
        std::string text;
        std::string excerpt;
    } const rows[] = {
        {{1, 1, 1}, "P = Q", "P = Q\n^\n"},
        {{2, 3, 3}, "a\nb cde f\ng", "b cde f\n  ^~~\n"},
        {{1, 4, 2}, "\ta\tbc", "\ta\tbc\n\t \t^~\n"},
        {{1, 4, 3}, "é→ abc", "é→ abc\n   ^~~\n"},
        {{1, 3, 9}, "abcd", "abcd\n  ^~\n"},
        {{1, 5, 1}, "abcd", "abcd\n    ^\n"},
        {{1, 1, 1}, "", "\n^\n"},
        {{2, 1, 1}, "a\n", "\n^\n"},
        {{2, 2, 1}, "a\r\nbc\r\n", "bc\n ^\n"},
        {{1, 1, 1}, "\xEF\xBB\xBFP", "P\n^\n"},
        {{1, 2, 2}, std::string("a\0\xFF\x1B\r", 5) + "b", "a\uFFFD\uFFFD\uFFFD\uFFFDb\n ^~\n"},
        {{1, 200, 2},
         wide + wide,
         "…" + std::string(150, 'x') + "…\n" + std::string(76, ' ') + "^~\n"},
        {{1, 150, 3}, wide, std::string(150, 'x') + "…\n" + std::string(149, ' ') + "^\n"},
    };
    for (auto const& row : rows) {
        std::string const heading = "d/f.csp:" + std::to_string(row.location.line) + ":" +
                                    std::to_string(row.location.column) + ": error: no\n";
        EXPECT_EQ(render({row.location, "no"}, {{"d/f.csp", row.text}}), heading + row.excerpt);
    }
}

TEST(Diagnostics, are_rendered_alike_alone_and_together) {
    Sources const sources{{"f", "one two\nthree\n" + std::string(400, 'x') + "\nfour"}};
    Diagnostics const diagnostics{
        {{1, 1, 3}, "a"},   {{1, 5, 3}, "b"}, {{3, 100, 1}, "c"},         {{3, 300, 1}, "d"},
        {{3, 310, 1}, "e"}, {{4, 1, 4}, "f"}, {{2, 1, 5}, "out of order"}};
    std::string alone;
    for (Diagnostic const& diagnostic : diagnostics) {
        alone += render(diagnostic, sources);
    }
    EXPECT_EQ(render_all(diagnostics, sources), alone);
    EXPECT_EQ(render_all({}, sources), "");
}

TEST(Diagnostics, quotations_are_cut) {
    EXPECT_EQ(in_quotes("P"), "'P'");
    EXPECT_EQ(in_quotes(std::string(60, 'x')), "'" + std::string(60, 'x') + "'");
    EXPECT_EQ(in_quotes(std::string(61, 'x')), "'" + std::string(60, 'x') + "…'");
}

TEST(Diagnostics, beyond_twenty_are_counted) {
    Sources const sources{{"f", "x"}};
    Diagnostics diagnostics(most_told, {{1, 1, 1}, "a"});
    std::string const one = render(diagnostics[0], sources);
    std::string all;
    for (std::size_t i = 0; i < most_told; ++i) {
        all += one;
    }
    EXPECT_EQ(render_all(diagnostics, sources), all);
    diagnostics.push_back(diagnostics[0]);
    EXPECT_EQ(render_all(diagnostics, sources), all + "f: 1 more error\n");
    diagnostics.resize(1000, diagnostics[0]);
    EXPECT_EQ(render_all(diagnostics, sources), all + "f: 980 more errors\n");
}

TEST(Diagnostics, are_sorted_by_place_and_each_kept_once) {
    Diagnostics diagnostics{{{2, 1, 1}, "z"},  {{1, 9, 1}, "b"}, {{1, 9, 1}, "a"},
                            {{1, 10, 1}, "c"}, {{2, 1, 1}, "z"}, {{1, 9, 1}, "b"}};
    sort_and_remove_repetitions(diagnostics);
    EXPECT_EQ(
        diagnostics,
        (Diagnostics{{{1, 9, 1}, "a"}, {{1, 9, 1}, "b"}, {{1, 10, 1}, "c"}, {{2, 1, 1}, "z"}}));
}

} // namespace
} // namespace Calder::Script
