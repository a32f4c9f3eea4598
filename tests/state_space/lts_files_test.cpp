#include "state_space/lts_files.h"
#include "tests/state_space/graph_terms.h"
#include "tests/state_space/temporary_directory.h"

#include <gtest/gtest.h>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using namespace Testing;

class LtsFiles : public Testing::TemporaryDirectory {
  protected:
    LtsFiles() {
        session.declare_event("a");
        session.declare_event("b.1");
        session.declare_event("say.\"x\\y\"&\n");
        session.declare_event("i");
    }

    std::string written(std::string const& name, LabelledTransitionSystem const& lts,
                        LtsFileOptions const& options = {}) {
        write_lts_file(path(name), lts, session, options);
        return contents(path(name));
    }

    /// The message of the error that there must be.
    std::string error(std::string const& name, LabelledTransitionSystem const& lts,
                      LtsFileOptions const& options = {}) {
        try {
            write_lts_file(path(name), lts, session, options);
        } catch (LtsFileError const& failure) {
            return failure.what();
        }
        return "no error";
    }

    ProcessCompiler::Session session;
};

TEST_F(LtsFiles, aut) {
    EXPECT_EQ(written("a.aut", lts_of({{}})), "des (0, 0, 1)\n");
    EXPECT_EQ(written("a.aut", lts_of({{{3, 1}, {tau, 0}}, {{tick, 2}, {4, 0}}, {}})),
              "des (0, 4, 3)\n"
              "(0, \"a\", 1)\n"
              "(0, \"tau\", 0)\n"
              "(1, \"tick\", 2)\n"
              "(1, \"b.1\", 0)\n");
    EXPECT_EQ(written("a.aut", lts_of({{{tau, 0}, {3, 0}}}), {"i"}),
              "des (0, 2, 1)\n(0, \"i\", 0)\n(0, \"a\", 0)\n");
    EXPECT_EQ(written("a.aut", lts_of({{{5, 0}, {6, 0}}})),
              "des (0, 2, 1)\n(0, \"say.\\\"x\\\\y\\\"&\\n\", 0)\n(0, \"i\", 0)\n");
    EXPECT_EQ(written("a.aut", lts_of({{{3, 1}}}, 2)), "des (0, 1, 2)\n(0, \"a\", 1)\n")
        << "what is explored of an incomplete system";
}

TEST_F(LtsFiles, dot) {
    EXPECT_EQ(written("a.dot", lts_of({{{3, 1}, {tau, 0}, {5, 0}}, {{tick, 1}}}), {"i"}),
              "digraph lts {\n"
              "    node [shape=circle];\n"
              "    start [shape=point];\n"
              "    start -> 0;\n"
              "    0;\n"
              "    1;\n"
              "    0 -> 1 [label=\"a\"];\n"
              "    0 -> 0 [label=\"tau\"];\n"
              "    0 -> 0 [label=\"say.\\\"x\\\\y\\\"&amp;\\n\"];\n"
              "    1 -> 1 [label=\"tick\"];\n"
              "}\n");
}

constexpr unsigned width = 30'000; // whose row is several buffers long

Row wide_row() {
    Row row;
    for (unsigned target = 0; target < width; ++target) {
        row.emplace_back(3, target);
    }
    return row;
}

TEST_F(LtsFiles, a_large_file_is_whole) {
    std::string text = "des (0, 30000, 30000)\n";
    for (unsigned target = 0; target < width; ++target) {
        text += "(0, \"a\", " + std::to_string(target) + ")\n";
    }
    EXPECT_EQ(written("large.aut", lts_of({wide_row()}, width)), text);
}

TEST_F(LtsFiles, writing_can_be_stopped_at_any_buffer) {
    auto const lts = lts_of({wide_row()}, width);
    auto const stop_at = [&](unsigned call) {
        unsigned calls = 0;
        error("a.aut", lts, {.keep_going = [&] { return ++calls < call; }});
        return calls;
    };
    written("a.aut", lts_of({{}}));
    unsigned call = 0;
    do {
        ++call;
        EXPECT_EQ(contents(path("a.aut")), "des (0, 0, 1)\n") << "before call " << call;
        EXPECT_EQ(names(), std::vector<std::string>{"a.aut"}) << "before call " << call;
    } while (stop_at(call) == call);
    EXPECT_GT(call, 2U);
    EXPECT_GT(contents(path("a.aut")).size(), 100'000U) << "never stopped";
}

TEST_F(LtsFiles, asking_whether_a_file_can_be_written_leaves_no_trace) {
    check_lts_file(path("new.aut"));
    EXPECT_EQ(names(), std::vector<std::string>());
    EXPECT_THROW(check_lts_file(path("new.txt")), LtsFileError);
    EXPECT_THROW(check_lts_file(path("nowhere/new.aut")), LtsFileError);
    written("old.aut", lts_of({{}}));
    check_lts_file(path("old.aut"));
    EXPECT_EQ(contents(path("old.aut")), "des (0, 0, 1)\n");
    EXPECT_EQ(names(), std::vector<std::string>{"old.aut"});
}

TEST_F(LtsFiles, the_ending_chooses_the_format) {
    EXPECT_EQ(lts_format_of("x/y.aut"), LtsFormat::aut);
    EXPECT_EQ(lts_format_of("y.aut.dot"), LtsFormat::dot);
    for (char const* const name :
         {"y", "y.bcg", ".aut", "aut", "y.aut.gz", "y.aut/", "y.AUT", ""}) {
        try {
            lts_format_of(name);
            ADD_FAILURE() << name;
        } catch (LtsFileError const& failure) {
            EXPECT_EQ(failure.what(),
                      "cannot write " + std::string(name) +
                          ": its ending chooses the format, and must be .aut or .dot");
        }
    }
    error("y.bcg", lts_of({{}}));
    EXPECT_EQ(names(), std::vector<std::string>());
}

TEST_F(LtsFiles, labels_must_tell_events_apart) {
    struct {
        Rows rows;
        char const* tau_label;
        std::string reason;
    } const rows[] = {
        {{{{tau, 0}, {6, 0}}},
         "i",
         "the process has an event named i, which is how tau would be written"},
        {{{{7, 0}}}, "tau", "event number 7 has no name"},
        {{{{0, 0}}}, "tau", "event number 0 has no name"},
    };
    written("a.aut", lts_of({{}}));
    for (auto const& row : rows) {
        EXPECT_EQ(error("a.aut", lts_of(row.rows), {row.tau_label}),
                  "cannot write " + path("a.aut").native() + ": " + row.reason);
        EXPECT_EQ(contents(path("a.aut")), "des (0, 0, 1)\n");
        EXPECT_EQ(names(), std::vector<std::string>{"a.aut"});
    }
}

} // namespace
} // namespace Calder::StateSpace
