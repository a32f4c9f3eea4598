#include "core/pretty_printer.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace Calder {
namespace {

using Printer = PrettyPrinter::PrettyPrinter<int, char>;

/// What `print` leaves in the stream, with the printer still alive or after its destructor.
std::string written(std::function<void(Printer&)> const& print, bool destroyed = true) {
    std::ostringstream stream;
    std::string before_destruction;
    {
        Printer printer(stream, 0);
        print(printer);
        before_destruction = stream.str();
    }
    return destroyed ? stream.str() : before_destruction;
}

struct Row {
    char const* fault;
    std::function<void(Printer&)> print;
    char const* text;
};

class PrinterRows : public testing::TestWithParam<Row> {};

TEST_P(PrinterRows, writes) {
    EXPECT_EQ(written(GetParam().print), GetParam().text) << GetParam().fault;
}

Row const line_rows[] = {
    {"a last line without a newline is lost", [](Printer& p) { p << "abc"; }, "abc"},
    {"a newline is added at the end", [](Printer& p) { p << "abc\n"; }, "abc\n"},
    {"an empty line is written", [](Printer& p) { p << "abc\n\n\ndef\n\n"; }, "abc\ndef\n"},
    {"an empty line is written at the very start", [](Printer& p) { p << "\n\nabc\n"; }, "abc\n"},
    {"newlines in the middle are missed",
     [](Printer& p) {
         p << "a\nb"
           << "c\n";
     },
     "a\nbc\n"},
    {"the indentation is missing, doubled, or written before a dropped line",
     [](Printer& p) {
         p.indent = 2;
         p << "a"
           << "b\n"
           << "\n"
           << "c\n";
     },
     "  ab\n  c\n"},
    {"an indentation that was written is taken back",
     [](Printer& p) {
         p << "title\n";
         p.indent += 4;
         p << "set";
         p.indent -= 4;
         p << "\nrest";
     },
     "title\n    set\nrest"},
};
INSTANTIATE_TEST_SUITE_P(Lines, PrinterRows, testing::ValuesIn(line_rows));

void pieces(Printer& p, std::initializer_list<char const*> texts) {
    for (char const* const text : texts) {
        p << text;
        p.end_piece();
    }
}

Row const width_rows[] = {
    {"a piece is broken",
     [](Printer& p) {
         p.line_width = 3;
         p << "abcdef\n";
     },
     "abcdef\n"},
    {"a line is broken before a piece that just fits",
     [](Printer& p) {
         p.line_width = 6;
         pieces(p, {"abc", "def", "g"});
         p << "\n";
     },
     "abcdef\ng\n"},
    {"a continued line is not indented, or its indentation not counted",
     [](Printer& p) {
         p.line_width = 6;
         p.indent = 2;
         pieces(p, {"ab", "cd", "ef"});
     },
     "  abcd\n  ef"},
    {"a first piece beyond the width leaves an empty line",
     [](Printer& p) {
         p.line_width = 2;
         pieces(p, {"abcdef", "gh"});
     },
     "abcdef\ngh"},
};
INSTANTIATE_TEST_SUITE_P(Width, PrinterRows, testing::ValuesIn(width_rows));

Row const budget_rows[] = {
    {"the budget is tested before a piece is written, or the line is not ended",
     [](Printer& p) {
         p.remaining_characters = 5;
         p << "abcd\n";
         EXPECT_EQ(p.remaining_characters, 1);
         p << "efgh\n";
         EXPECT_EQ(p.remaining_characters, 0);
         p << "ijkl\n";
     },
     "abcd\nefgh\n"},
    {"pieces after the spent budget are written",
     [](Printer& p) {
         p.remaining_characters = 4;
         pieces(p, {"ab", "cd", "ef"});
         p << "\nxyz";
     },
     "abcd\n"},
    {"an unlimited budget is counted down",
     [](Printer& p) {
         p << "abcd\n";
         EXPECT_EQ(p.remaining_characters, -1);
     },
     "abcd\n"},
    {"a spent budget still writes the indentation",
     [](Printer& p) {
         p.remaining_characters = 0;
         p.indent = 4;
         p << "abcd\n";
     },
     ""},
    {"lines of one text go on after the budget",
     [](Printer& p) {
         p.remaining_characters = 2;
         p << "ab\ncd\nef";
     },
     "ab\n"},
    {"a silenced printer writes",
     [](Printer& p) {
         p << "held back";
         p.silenced = true;
         p << "abcd\n";
     },
     ""},
};
INSTANTIATE_TEST_SUITE_P(Budget, PrinterRows, testing::ValuesIn(budget_rows));

Row const piece_budget_rows[] = {
    {"a long piece is not cut",
     [](Printer& p) {
         p.piece_budget = 3;
         p << "abcdef\n";
         EXPECT_EQ(p.piece_budget, 0U);
     },
     "ab…\n"},
    {"a piece of just the budget is cut",
     [](Printer& p) {
         p.piece_budget = 3;
         p << "abc\n";
     },
     "abc\n"},
    {"what is left is not lowered by a piece",
     [](Printer& p) {
         p.piece_budget = 5;
         pieces(p, {"abc", "defg", "h"});
         p << "\n";
     },
     "abcd…\n"},
    {"with no budget left a line is not ended",
     [](Printer& p) {
         p.piece_budget = 0;
         p << "abc\n";
     },
     "\n"},
    {"the unlimited budget is lowered",
     [](Printer& p) {
         p << "abc\n";
         EXPECT_EQ(p.piece_budget, Printer::no_piece_budget);
     },
     "abc\n"},
};
INSTANTIATE_TEST_SUITE_P(PieceBudget, PrinterRows, testing::ValuesIn(piece_budget_rows));

TEST(Printer, holds_text_back_until_its_line_ends) {
    EXPECT_EQ(written([](Printer& p) { p << "abc"; }, false), "");
    EXPECT_EQ(written([](Printer& p) { p << "abc\nde"; }, false), "abc\n");
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
