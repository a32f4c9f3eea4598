#include "core/pretty_printer.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Calder {
namespace {

using Printer = PrettyPrinter::PrettyPrinter<int, char>;

/// What is set before printing; as in the printer itself where nothing is said.
struct Settings {
    unsigned indent = 0;
    unsigned width = Printer::no_line_width;
    std::int32_t budget = -1;
    unsigned piece_budget = Printer::no_piece_budget;
};

/// Prints `texts`, in which `|` ends a piece, `>` and `<` change the indentation by four, and `#`
/// silences the printer.
void print(Printer& printer, std::string const& texts) {
    std::string text;
    for (char const character : texts + '$') {
        if (std::string("|><#$").find(character) == std::string::npos) {
            text += character;
            continue;
        }
        printer << text;
        text.clear();
        switch (character) {
        case '|': printer.end_piece(); break;
        case '>': printer.indent += 4; break;
        case '<': printer.indent -= 4; break;
        case '#': printer.silenced = true; break;
        }
    }
}

// clang-format off
struct {
    char const* fault;
    Settings settings;
    char const* texts;
    char const* written;
    std::int64_t budget_left = -1; // of the one that is set
} const rows[] = {
    {"a last line without a newline is lost", {}, "abc", "abc"},
    {"a newline is added at the end", {}, "abc\n", "abc\n"},
    {"an empty line is written", {}, "abc\n\n\ndef\n\n", "abc\ndef\n"},
    {"an empty line is written at the very start", {}, "\n\nabc\n", "abc\n"},
    {"newlines in the middle are missed", {}, "a\nb|c\n", "a\nbc\n"},
    {"the indentation is missing, doubled, or written before a dropped line", {.indent = 2}, "a|b\n|\n|c\n", "  ab\n  c\n"},
    {"an indentation that was written is taken back", {}, "title\n>set<\nrest", "title\n    set\nrest"},

    {"a piece is broken", {.width = 3}, "abcdef\n", "abcdef\n"},
    {"a line is broken before a piece that just fits", {.width = 6}, "abc|def|g|\n", "abcdef\ng\n"},
    {"a continued line is not indented, or its indentation not counted", {.indent = 2, .width = 6}, "ab|cd|ef|", "  abcd\n  ef"},
    {"a first piece beyond the width leaves an empty line", {.width = 2}, "abcdef|gh|", "abcdef\ngh"},

    {"the budget is not counted down", {.budget = 5}, "abcd\n", "abcd\n", 1},
    {"the budget is tested before a piece is written, or the line is not ended", {.budget = 5}, "abcd\n|efgh\n|ijkl\n", "abcd\nefgh\n", 0},
    {"pieces after the spent budget are written", {.budget = 4}, "ab|cd|ef|\nxyz", "abcd\n", 0},
    {"a spent budget still writes the indentation", {.indent = 4, .budget = 0}, "abcd\n", "", 0},
    {"lines of one text go on after the budget", {.budget = 2}, "ab\ncd\nef", "ab\n", 0},
    {"an unlimited budget is counted down", {}, "abcd\n", "abcd\n", -1},
    {"a silenced printer writes", {}, "held back#abcd\n", ""},

    {"a long piece is not cut", {.piece_budget = 3}, "abcdef\n", "ab…\n", 0},
    {"a piece of just the budget is cut", {.piece_budget = 3}, "abc\n", "abc\n", 0},
    {"what is left is not lowered by a piece", {.piece_budget = 5}, "abc|defg|h|\n", "abcd…\n", 0},
    {"what is left is lowered too far", {.piece_budget = 5}, "abc|", "abc", 2},
    {"with no budget left a line is not ended", {.piece_budget = 0}, "abc\n", "\n", 0},
};
// clang-format on

TEST(Printer, writes_within_its_limits) {
    for (auto const& row : rows) {
        std::ostringstream stream;
        {
            Printer printer(stream, 0);
            printer.indent = row.settings.indent;
            printer.line_width = row.settings.width;
            printer.remaining_characters = row.settings.budget;
            printer.piece_budget = row.settings.piece_budget;
            print(printer, row.texts);
            bool const by_piece = row.settings.piece_budget != Printer::no_piece_budget;
            EXPECT_EQ(by_piece ? std::int64_t{printer.piece_budget} : printer.remaining_characters,
                      row.budget_left)
                << row.fault;
            EXPECT_EQ(printer.piece_budget == Printer::no_piece_budget, !by_piece) << row.fault;
        }
        EXPECT_EQ(stream.str(), row.written) << row.fault;
    }
}

TEST(Printer, collects_no_more_of_a_line_than_is_asked_for) {
    struct {
        std::int32_t budget;
        std::size_t most_pending;
        char const* texts;
        std::size_t collected;
        char const* written;
    } const lines[] = {
        {4, Printer::no_pending_limit, "ab|cd|ef|gh", 8, "abcd\n"},
        {4, 100, "ab|cd|ef|gh", 4, "abcd\n"},
        {5, 100, "abcdefgh|ij", 8, "abcdefgh\n"},
        {5, 100, "abcd\nefgh|ijkl", 4, "abcd\nefgh\n"},
        {-1, 6, "abcd|efgh|ijkl", 8, "abcdefgh\n"},
        {-1, 4, "abcd|efgh\nij", 2, "abcd\nij\n"},
    };
    for (auto const& row : lines) {
        std::ostringstream stream;
        Printer printer(stream, 0);
        printer.remaining_characters = row.budget;
        printer.most_pending = row.most_pending;
        print(printer, row.texts);
        std::size_t collected = printer.pending_text.size();
        for (std::string const& piece : printer.pieces) {
            collected += piece.size();
        }
        EXPECT_EQ(collected, row.collected) << row.texts;
        EXPECT_EQ(printer.has_enough(),
                  row.most_pending != Printer::no_pending_limit && collected >= 4)
            << row.texts;
        printer << "\n";
        EXPECT_EQ(stream.str(), row.written) << row.texts;
    }
}

TEST(Printer, holds_text_back_until_its_line_ends) {
    std::ostringstream stream;
    Printer printer(stream, 0);
    printer << "abc";
    EXPECT_EQ(stream.str(), "");
    printer << "\nde";
    EXPECT_EQ(stream.str(), "abc\n");
}

TEST(Printer, is_not_changed_while_silenced) {
    std::ostringstream stream;
    Printer printer(stream, 0);
    printer << "ab";
    printer.silenced = true;
    printer << "cd\n";
    printer.end_piece();
    printer.flush();
    EXPECT_EQ(printer.pending_text, "ab");
    EXPECT_TRUE(printer.pieces.empty());
    printer.silenced = false;
    printer << "ef\n";
    EXPECT_EQ(stream.str(), "abef\n");
}

TEST(Printer, refuses_a_null_text) {
    std::ostringstream stream;
    Printer printer(stream, 0);
    try {
        printer << static_cast<char const*>(nullptr);
        FAIL();
    } catch (std::logic_error const& error) {
        EXPECT_STREQ(error.what(), "basic_string::_M_construct null not valid");
    }
}

TEST(Printer, formats_numbers_by_the_environment) {
    std::ostringstream stream;
    Printer const printer(stream, 0);
    std::string const kept = getenv("LC_ALL") == nullptr ? "" : getenv("LC_ALL");
    for (char const* const locale : {"C", "no_SUCH.locale"}) {
        setenv("LC_ALL", locale, 1);
        EXPECT_EQ(printer.format_number(1234567U), "1234567") << locale;
    }
    setenv("LC_ALL", kept.c_str(), 1);
}

class FailingBuffer : public std::streambuf {
  protected:
    int overflow(int) override { throw std::runtime_error("the stream is broken"); }
    std::streamsize xsputn(char const*, std::streamsize) override {
        throw std::runtime_error("the stream is broken");
    }
};

TEST(PrinterDeathTest, an_error_while_the_destructor_writes_ends_the_program) {
    auto const lose_the_last_line = [] {
        FailingBuffer buffer;
        std::ostream stream(&buffer);
        stream.exceptions(std::ios::badbit | std::ios::failbit);
        Printer printer(stream, 0);
        printer.pending_text = "abc";
    };
    EXPECT_EXIT(lose_the_last_line(), testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace Calder
