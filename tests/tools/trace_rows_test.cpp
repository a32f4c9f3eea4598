#include "tools/trace_rows.h"

#include <gtest/gtest.h>

#include <memory>

namespace Calder::Tools {
namespace {

TEST(TraceRows, SplitsALineAtCommasOutsideOfQuotes) {
    struct Row {
        std::string line;
        std::vector<std::string> fields;
    };
    Row const rows[] = {
        {"", {""}},
        {"1,2", {"1", "2"}},
        {",", {"", ""}},
        {R"(0,"a,b",1)", {"0", R"("a,b")", "1"}},
        {R"("\",",1)", {R"("\",")", "1"}},    // an escaped quote ends nothing
        {R"("\\",1)", {R"("\\")", "1"}},      // behind an escaped backslash it does
        {R"(a"b,c"d)", {R"(a"b)", R"(c"d)"}}, // one inside begins nothing
        {R"(1,"a,2)", {"1", R"("a,2)"}},      // one without end goes to the end
        {R"(1,"a\)", {"1", R"("a\)"}},
        {R"("a"b,c")", {R"("a"b)", R"(c")"}},
    };
    for (Row const& row : rows) {
        std::vector<std::string> fields;
        for (TraceField const field : fields_of(row.line)) {
            fields.push_back(row.line.substr(field.first, field.length));
        }
        EXPECT_EQ(fields, row.fields) << row.line;
    }
}

TEST(TraceRows, ReadsNamesOfEvents) {
    struct Row {
        std::string field;
        std::optional<EventText> event;
    };
    Row const rows[] = {
        {R"("eat.1")", EventText{"eat.1"}},
        {R"("")", EventText{""}},
        {R"("a\"b\\c")", EventText{R"(a"b\c)"}},
        {"#E6BC94#", EventText{"演"}},
        {"##", EventText{""}},
        {R"("eat"...)", EventText{"eat", true}},
        {"#E6BC#...", EventText{"\xE6\xBC", true}},
        {"", std::nullopt},
        {"\"", std::nullopt},
        {"#", std::nullopt},
        {"...", std::nullopt},
        {"eat", std::nullopt},
        {"17", std::nullopt},
        {R"("eat)", std::nullopt},
        {R"("eat\")", std::nullopt},
        {R"("e"at")", std::nullopt},
        {R"("e\at")", std::nullopt},
        {R"("eat#)", std::nullopt},
        {"#E6B#", std::nullopt},
        {"#e6#", std::nullopt},
        {"#G6#", std::nullopt},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(event_of(row.field), row.event) << row.field;
    }
    EXPECT_TRUE((EventText{"eat.1"}).stands_for("eat.1"));
    EXPECT_FALSE((EventText{"eat.1"}).stands_for("eat.10"));
    EXPECT_TRUE((EventText{"eat.1", true}).stands_for("eat.10"));
    EXPECT_FALSE((EventText{"eat.1", true}).stands_for("eat"));
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// What a reader finds that wants the columns leaf0 and leaf1: "0 1 a; 1 1", or the message of what is
/// wrong and where.
std::string read(std::string text) {
    // An empty buffer is none to the library.
    std::unique_ptr<std::FILE, CloseFile> const file(
        text.empty() ? std::fopen("/dev/null", "r") : fmemopen(text.data(), text.size(), "r"));
    std::string told;
    try {
        TraceRows rows(file.get(), "t.csv", {"leaf0", "leaf1"});
        for (TraceRow row; rows.next(row);) {
            told += told.empty() ? "" : "; ";
            told += std::to_string(row.state[0]) + " " + std::to_string(row.state[1]);
            told += row.event ? " " + row.event->text : "";
        }
    } catch (TraceError const& error) {
        Script::Location const& place = error.diagnostic().location;
        EXPECT_EQ(error.source().name, "t.csv");
        EXPECT_EQ(error.source().first_line, place.line);
        return std::to_string(place.line) + ":" + std::to_string(place.column) + "+" +
               std::to_string(place.length) + ": " + error.what();
    }
    return told;
}

TEST(TraceRows, ReadsRows) {
    struct Row {
        std::string text;
        std::string told;
    };
    std::string const head = "leaf0:number,leaf1:number,action:action\n";
    Row const rows[] = {
        {head + "0,1,\"a\"\n1,1,\n", "0 1 a; 1 1"},
        {head + "0,1,\"a\"\n1,1,", "0 1 a; 1 1"},
        {head + "-1,2147483647,\n", "-1 2147483647"},
        {"\xEF\xBB\xBFleaf0:n,leaf1:n,action:a\r\n0,1,\"a\"\r\n1,1,\r\n", "0 1 a; 1 1"},
        {"leaf1:n,ltl:n,leaf0:n,end:bool,action:a\n0,7,1,false,\"a\"\n", "1 0 a"},
        {"leaf0:n,leaf1:n\n3,4\n", "3 4"},
        {"leaf0,leaf1\n3,4\n", "3 4"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(read(row.text), row.told) << row.text;
    }
}

TEST(TraceRows, TellsWhatIsWrongAndWhere) {
    struct Row {
        std::string text;
        std::string told; // the beginning of it
    };
    std::string const head = "leaf0:n,leaf1:n,action:a\n";
    Row const rows[] = {
        {"", "1:1+1: the file is empty"},
        {"\n", "1:1+1: a trace begins with its columns, 'leaf0' among them"},
        {head, "2:1+1: the first state is missing"},
        {head + "\n", "2:1+1: the line has 1 value, and not 3"},
        {head + "0,1\n", "2:3+1: the line has 2 values, and not 3"},
        {head + "0,1,,\n", "2:6+1: the line has 4 values, and not 3"},
        {head + "0,1,\"a\n", "2:5+2: the name of an event stands here"},
        {head + "0,1,\"a\"\n1,1,a\n", "3:5+1: the name of an event stands here"},
        {head + "0,1,12\n", "2:5+2: the number of an event stands here"},
        {head + "0,,\n", "2:3+1: the number of a state stands here, and not ''"},
        {head + "0,1x,\n", "2:3+2: the number of a state stands here, and not '1x'"},
        {head + "0, 1,\n", "2:3+2: the number of a state stands here, and not ' 1'"},
        {head + "0,2147483648,\n", "2:3+10: the number of a state stands here"},
        {head + "0,1" + std::string(100, '0') + ",\n", "2:3+101: the number of a state stands"},
        {head + "0,1,\"\xE6\xBC\x94\"\n", "2:6+1: this is no line"},
        {head + std::string("0,\0,\n", 5), "2:3+1: this is no line"},
        {"\x7F"
         "ELF",
         "1:1+1: this is no line"},
        {"state 0/5\n", "1:1+9: a trace begins with its columns, 'leaf0' among them"},
        {"leaf0:n;leaf1:n;action:a\n", "1:1+24: the columns have commas between them"},
        {"leaf0:n, leaf1:n,action:a\n", "1:1+7: the columns have commas between them"},
        {"configuration0:n,leaf1:n,action:a\n",
         "1:1+16: a trace of this process has a column 'leaf0'"},
        {"leaf0:n,action:a\n", "1:1+7: a trace of this process has a column 'leaf1'"},
        {"leaf0:n,leaf1:n,leaf2:n\n", "1:17+7: a trace of this process has no column 'leaf2'"},
        {"leaf0:n,leaf0:n,leaf1:n\n", "1:9+7: the column 'leaf0' stands here again"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(read(row.text).substr(0, row.told.size()), row.told) << row.text;
    }
}

} // namespace
} // namespace Calder::Tools
