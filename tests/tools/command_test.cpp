#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <sys/wait.h>

namespace {

struct Answer {
    int exit_code;
    std::string output;
    std::string errors;
};

/// A folder for scripts and results, and the command run in it as a user would.
class CommandTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "calder-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    void write(std::string const& name, std::string const& text) const {
        std::ofstream(folder / name) << text;
    }
    std::string read(std::string const& name) const {
        std::stringstream text;
        text << std::ifstream(folder / name).rdbuf();
        return text.str();
    }

    /// Runs `calder WORDS`, or `before calder WORDS`, in the folder. What differs from run to run
    /// stands as #.
    Answer calder(std::string const& words, std::string const& before = "") const {
        std::string const command = "cd '" + folder.string() + "' && " + before + " '" +
                                    CALDER_COMMAND + "' " + words + " 2>errors";
        std::FILE* const pipe = popen(command.c_str(), "r");
        std::string output;
        std::array<char, 4096> buffer{};
        while (std::size_t const length = fread(buffer.data(), 1, buffer.size(), pipe)) {
            output.append(buffer.data(), length);
        }
        int const status = pclose(pipe);
        output = std::regex_replace(output, std::regex("[0-9]+\\.[0-9]+ (s|MiB)\n"), "# $1\n");
        return {WEXITSTATUS(status), output, read("errors")};
    }

    std::filesystem::path folder;
};

char const* const two_processes = "channel a, b\n"
                                  "P = a -> (b -> P [] a -> STOP)\n"
                                  "Q = b -> P\n";

TEST_F(CommandTest, explores_the_process_defined_last_or_the_one_named) {
    write("m.csp", two_processes);
    Answer const last = calder("explore m.csp");
    EXPECT_EQ(last.exit_code, 0) << last.errors;
    EXPECT_EQ(
        last.output,
        "process      Q\nengine       terms\nstates       4\ntransitions  4\ncomplete     yes\n"
        "time         # s\npeak memory  # MiB\n");
    EXPECT_EQ(last.errors, "");
    EXPECT_NE(calder("explore m.csp --process P").output.find("states       3\n"),
              std::string::npos);
}

TEST_F(CommandTest, finds_deadlocks_and_answers_by_its_exit_code) {
    write("m.csp", two_processes);
    write("live.csp", "channel a\nP = a -> P\n");
    struct {
        char const* words;
        int exit_code;
        char const* line;
    } const rows[] = {
        {"explore m.csp --deadlock", 1, "deadlock     after b, a, a\n"},
        {"explore live.csp --deadlock", 0, "deadlock     none\n"},
        {"explore m.csp --deadlock --max-states 2", 3, "deadlock     none in what was explored\n"},
    };
    for (auto const& row : rows) {
        Answer const answer = calder(row.words);
        EXPECT_EQ(answer.exit_code, row.exit_code) << row.words;
        EXPECT_NE(answer.output.find(row.line), std::string::npos) << answer.output;
    }
}

TEST_F(CommandTest, an_incomplete_search_says_so_and_writes_no_file) {
    write("m.csp", two_processes);
    Answer const answer = calder("explore m.csp --max-states 3 --output m.aut");
    EXPECT_EQ(answer.exit_code, 3);
    EXPECT_NE(answer.output.find("states       3\n"), std::string::npos) << answer.output;
    EXPECT_NE(answer.output.find("complete     no: the limit on states was reached\n"),
              std::string::npos);
    EXPECT_EQ(answer.errors, "calder: m.aut was not written: the exploration is not complete\n");
    EXPECT_FALSE(std::filesystem::exists(folder / "m.aut"));
}

TEST_F(CommandTest, writes_files) {
    write("m.csp", "channel a\nP = a -> P\n");
    EXPECT_EQ(calder("explore m.csp --output m.aut").exit_code, 0);
    EXPECT_EQ(read("m.aut"), "des (0, 1, 1)\n(0, \"a\", 0)\n");
    EXPECT_EQ(calder("explore m.csp --output m.dot").exit_code, 0);
    EXPECT_EQ(read("m.dot").substr(0, 7), "digraph");
}

char const* const ring = "channel a, b, c, d\n"
                         "NODE = a -> b -> NODE\n"
                         "PAIR = NODE [| {b} |] NODE[[b <- c]]\n"
                         "STUCK = NODE [| {a, b} |] a -> c -> STOP\n";

TEST_F(CommandTest, both_engines_and_any_number_of_threads_give_the_same) {
    write("m.csp", ring);
    std::string const words = "explore m.csp --process PAIR --output ";
    EXPECT_EQ(calder(words + "terms.aut --engine terms").exit_code, 0);
    for (std::string const threads : {"1", "2", "5"}) {
        Answer const answer = calder(words + "machine.aut --threads " + threads);
        EXPECT_EQ(answer.exit_code, 0) << answer.errors;
        EXPECT_NE(answer.output.find("engine       machine of 2 components\n"), std::string::npos)
            << answer.output;
        EXPECT_EQ(read("machine.aut"), read("terms.aut"));
    }
    EXPECT_EQ(calder(words + "x.aut --engine tree").exit_code, 2);
    EXPECT_EQ(calder(words + "x.aut --threads 0").exit_code, 2);
}

TEST_F(CommandTest, a_trace_of_a_machine_names_who_takes_part) {
    write("m.csp", ring);
    EXPECT_NE(calder("explore m.csp --process STUCK --deadlock")
                  .output.find("deadlock     after a, c\n"
                               "             a               NODE, a -> …\n"
                               "             c               a -> …\n"),
              std::string::npos);
    Answer const twins = calder("explore m.csp --process STUCK --deadlock --engine terms");
    EXPECT_NE(twins.output.find("deadlock     after a, c\ntime"), std::string::npos)
        << twins.output;
    write("twins.csp", "channel a\nP = a -> STOP\nQ = P ||| P\n");
    EXPECT_NE(calder("explore twins.csp --deadlock")
                  .output.find("             a               P#1\n"
                               "             a               P#2\n"),
              std::string::npos);
}

TEST_F(CommandTest, prints_machines) {
    write("m.csp", ring);
    Answer const text = calder("machine m.csp --process STUCK");
    EXPECT_EQ(text.exit_code, 0) << text.errors;
    EXPECT_EQ(text.output, "STUCK starts in part 0\n\n"
                           "components\n"
                           "  part 1: NODE, 2 states, 2 transitions\n"
                           "    alphabet {a, b}\n"
                           "  part 2: a -> …, 3 states, 2 transitions\n"
                           "    alphabet {a, c}\n\n"
                           "constructs\n"
                           "  part 0: [|…|] over part 1, part 2\n"
                           "    alphabet {a, c}\n"
                           "    format 0: 0, 1 run\n"
                           "      tick -> format 0: 0 by tick, 1 by tick\n"
                           "      a -> format 0: 0 by a, 1 by a\n"
                           "      b -> format 0: 0 by b, 1 by b\n"
                           "      tick -> format 0: 0 by tick, 1 by tick\n"
                           "      c -> format 0: 1 by c\n");
    Answer const json = calder("machine m.csp --process STUCK --json");
    EXPECT_EQ(json.exit_code, 0) << json.errors;
    auto const machine = nlohmann::json::parse(json.output);
    EXPECT_EQ(machine["parts"][1]["name"], "NODE");
    EXPECT_EQ(machine["parts"][0]["arguments"], (std::vector<int>{1, 2}));
    EXPECT_EQ(machine["parts"][0]["formats"][0]["rules"][0]["participants"].size(), 2U);
}

TEST_F(CommandTest, recursion_that_no_machine_can_follow_is_told_where_it_stands) {
    write("m.csp", "channel a\nQ = a -> Q\nP = a -> (P ||| Q)\n");
    std::string const note = "m.csp:3:1: note: 'P' comes back inside argument 0 of '|||'\n";
    Answer const machine = calder("machine m.csp");
    EXPECT_EQ(machine.exit_code, 2);
    EXPECT_NE(machine.errors.find(note), std::string::npos) << machine.errors;
    Answer const explored = calder("explore m.csp --max-states 9");
    EXPECT_EQ(explored.exit_code, 3);
    EXPECT_NE(explored.output.find("engine       terms\nstates       9\n"), std::string::npos);
    EXPECT_NE(explored.errors.find(note), std::string::npos) << explored.errors;
    EXPECT_EQ(calder("explore m.csp --max-states 9 --quiet").errors, "");
}

TEST_F(CommandTest, prints_and_describes) {
    write("m.csp", two_processes);
    struct {
        char const* words;
        char const* output;
    } const rows[] = {
        {"print m.csp", "b -> P\n"},
        {"print m.csp --process P", "a -> (b -> P [] a -> (STOP))\n"},
        {"print m.csp --process P --abbreviate", "a -> …\n"},
        {"print m.csp --process P --width 12", "a -> (b -> P\n [] \na -> (STOP))\n"},
        {"print m.csp --process P --budget 3", "a -> (b -> P\n"},
        {"describe m.csp --process P", "Prefix a\n"},
    };
    for (auto const& row : rows) {
        Answer const answer = calder(row.words);
        EXPECT_EQ(answer.exit_code, 0) << answer.errors;
        EXPECT_EQ(answer.output, row.output) << row.words;
    }
}

TEST_F(CommandTest, what_is_wrong_is_told_where_it_stands) {
    write("bad.csp", "channel a\nP = a -> Q\nR = b -> R\n");
    write("loop.csp", "P = P\n");
    write("empty.csp", "channel a\n");
    write("m.csp", two_processes);
    struct {
        char const* words;
        char const* errors;
    } const rows[] = {
        {"explore bad.csp", "bad.csp:2:10: error: the process 'Q' is not defined"},
        {"explore bad.csp", "bad.csp:3:5: error: the event 'b' is not declared"},
        {"print bad.csp", "P = a -> Q\n         ^\n"},
        {"explore loop.csp", "loop.csp:1:1: error: recursion without a guard"},
        {"explore empty.csp", "calder: empty.csp defines no process"},
        {"explore missing.csp", "calder: cannot read missing.csp: No such file or directory"},
        {"explore .", "calder: cannot read .: Is a directory"},
        {"explore m.csp --process X", "calder: m.csp does not define 'X'; it defines: P, Q"},
        {"explore m.csp --output m.txt", ".aut"},
        {"explore m.csp --max-states 0", "--max-states"},
        {"explore m.csp --frobnicate", "--frobnicate"},
        {"explore", "FILE is required"},
        {"dance m.csp", "subcommand"},
        {"", "subcommand"},
    };
    for (auto const& row : rows) {
        Answer const answer = calder(row.words);
        EXPECT_EQ(answer.exit_code, 2) << row.words;
        EXPECT_NE(answer.errors.find(row.errors), std::string::npos) << row.words << ":\n"
                                                                     << answer.errors;
        EXPECT_EQ(answer.output, "") << row.words;
    }
}

TEST_F(CommandTest, says_its_version_and_helps) {
    EXPECT_EQ(calder("--version").exit_code, 0);
    EXPECT_EQ(calder("--version").output.substr(0, 7), "calder ");
    Answer const help = calder("explore --help");
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_NE(help.output.find("--deadlock"), std::string::npos);
}

TEST_F(CommandTest, recursion_without_end_meets_a_limit) {
    write("wide.csp", "channel a\nP = a -> (P ||| P)\n");
    write("deep.csp", "channel a\nP = a -> (P ; SKIP)\n");
    struct {
        char const* words;
        char const* line;
    } const rows[] = {
        {"explore wide.csp --max-states 500", "the limit on states was reached"},
        {"explore wide.csp --max-memory 100", "the limit on memory was reached"},
        {"explore deep.csp --max-memory 100", "the limit on memory was reached"},
    };
    for (auto const& row : rows) {
        Answer const answer = calder(row.words);
        EXPECT_EQ(answer.exit_code, 3) << row.words << answer.errors;
        EXPECT_NE(answer.output.find(row.line), std::string::npos) << answer.output;
    }
}

/// Hashing, comparing and asking for transitions recurse; the stack must suffice for every term that
/// a script can have.
TEST_F(CommandTest, a_term_at_the_nesting_limit_is_explored) {
    constexpr int levels = 1990;
    for (std::string const op :
         {" [] b -> STOP)", " ; SKIP)", " /\\ STOP)", " [> STOP)", " ||| STOP)", " \\ {c})",
          " [| {c} |] b -> STOP)", " [{a} || {a, b}] RUN({a, b}))", " [a <-> b] RUN({b}))",
          " [| {b} |> STOP)", " /+ {a} +\\ RUN({a}))", " [+ {a} +] RUN({a}))", ")[[b <- c]]"}) {
        std::string term = std::string(levels, '(') + "a -> a -> STOP";
        for (int level = 0; level < levels; ++level) {
            term += op;
        }
        write("deep.csp", "channel a, b, c\nP = " + term + "\n");
        Answer const answer = calder("explore deep.csp --max-states 5");
        EXPECT_TRUE(answer.exit_code == 0 || answer.exit_code == 3) << op << answer.errors;
        EXPECT_NE(answer.output.find("states       "), std::string::npos) << op;
        EXPECT_EQ(answer.output.find("too deeply"), std::string::npos) << op;
    }
}

TEST_F(CommandTest, an_interrupted_exploration_tells_what_it_found) {
    write("wide.csp", "channel a\nP = a -> (P ||| P)\n");
    std::string network = "channel a : {0..39}\nN = a.0 -> a.0 -> STOP";
    for (int node = 1; node < 40; ++node) {
        std::string const event = "a." + std::to_string(node);
        network += " ||| " + event + " -> " + event + " -> STOP";
    }
    write("network.csp", network + "\n");
    for (std::string const words : {"explore wide.csp", "explore network.csp --threads 1",
                                    "explore network.csp --threads 3"}) {
        Answer const answer = calder(words, "timeout --preserve-status -s INT 1");
        EXPECT_EQ(answer.exit_code, 3) << answer.errors;
        EXPECT_NE(answer.output.find("complete     no: it was interrupted\n"), std::string::npos)
            << answer.output;
    }
}

/// The example that the README shows, and its output there.
TEST_F(CommandTest, the_first_example_gives_what_is_promised) {
    Answer const answer = calder("explore " CALDER_EXAMPLES "/vending_machine.csp --deadlock");
    EXPECT_EQ(answer.exit_code, 1);
    EXPECT_NE(answer.output.find("states       5\ntransitions  7\ncomplete     yes\n"
                                 "deadlock     after off\n"),
              std::string::npos)
        << answer.output;
}

} // namespace
