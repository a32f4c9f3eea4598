#include "tools/fold.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <chrono>
#include <string>

namespace Calder::Tools {
namespace {

std::vector<std::uint32_t> list_of(std::string const& letters) {
    return {letters.begin(), letters.end()};
}

/// "a3(bc)d": letters, and pieces with how often they come.
std::string text_of(std::vector<Fold> const& folds, std::string const& letters) {
    std::string text;
    for (Fold const& fold : folds) {
        text += fold.count == 1
                    ? letters.substr(fold.first, fold.length)
                    : std::to_string(fold.count) + "(" + text_of(fold.round, letters) + ")";
    }
    return text;
}

std::size_t lines_of(std::vector<Fold> const& folds) {
    std::size_t lines = 0;
    for (Fold const& fold : folds) {
        lines += fold.count == 1 ? fold.length : heading_lines + lines_of(fold.round);
    }
    return lines;
}

/// What the folds stand for, written out.
void unfold(std::vector<Fold> const& folds, std::vector<std::size_t>& places) {
    for (Fold const& fold : folds) {
        for (std::size_t round = 0; round < fold.count; ++round) {
            if (fold.count > 1) {
                unfold(fold.round, places);
            } else {
                for (std::size_t i = 0; i < fold.length; ++i) {
                    places.push_back(fold.first + i);
                }
            }
        }
    }
}

TEST(Fold, FoldsWhatRepeats) {
    struct Row {
        std::string letters;
        std::string folded;
    };
    Row const rows[] = {
        {"", ""},
        {"a", "a"},
        {"abc", "abc"},
        {"aaa", "aaa"}, // as many lines as folded
        {"aaaa", "4(a)"},
        {"abab", "abab"},
        {"ababab", "3(ab)"},
        {"abcabc", "2(abc)"},
        {"xabcabcy", "x2(abc)y"},
        {"xabcabcab", "x2(abc)ab"},     // a round begun is told
        {"abababacacac", "3(ab)3(ac)"}, // one behind the other
        {"aaaaabaaaaab", "2(5(a)b)"},   // one within the other
        {"aabcabcabcabc", "a4(abc)"},   // not what comes first, but what is shortest
        {"bcaaaaaaaadbcaaaaaaaad", "2(bc8(a)d)"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(text_of(folded(list_of(row.letters)), row.letters), row.folded) << row.letters;
    }
}

RC_GTEST_PROP(FoldProperty, loses_nothing, ()) {
    auto const list =
        *rc::gen::container<std::vector<std::uint32_t>>(rc::gen::inRange<std::uint32_t>(0, 3));
    auto const folds = folded(list);
    std::vector<std::size_t> places;
    unfold(folds, places);
    RC_ASSERT(places.size() == list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        RC_ASSERT(list[places[i]] == list[i]);
    }
    RC_ASSERT(lines_of(folds) <= list.size());
}

/// Quadratic work would take minutes for the first two; a round that is too long is told as it stands.
TEST(Fold, TakesNoSecondsForALongList) {
    std::vector<std::uint32_t> alike(100'000, 7);
    std::vector<std::uint32_t> different(100'000);
    std::vector<std::uint32_t> rounds(100'000);
    for (std::uint32_t i = 0; i < different.size(); ++i) {
        different[i] = i;
        rounds[i] = i % 500;
    }
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(folded(alike), (std::vector<Fold>{{0, 1, 100'000, {{0, 1}}}}));
    EXPECT_EQ(folded(different), (std::vector<Fold>{{0, 100'000}}));
    EXPECT_EQ(folded(rounds), (std::vector<Fold>{{0, 500, 200, {{0, 500}}}}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace Calder::Tools
