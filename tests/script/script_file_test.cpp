#include "script/script_file.h"
#include "tests/script/reading.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <unistd.h>

namespace Calder::Script {
namespace {

/// A folder of scripts that goes with the test.
class ScriptFileTest : public testing::Test {
  protected:
    ScriptFileTest()
        : m_folder(std::filesystem::path(testing::TempDir()) /
                   ("calder_scripts_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder / "parts");
    }
    ~ScriptFileTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    std::string path(std::string const& name) const { return (m_folder / name).string(); }
    std::string write(std::string const& name, std::string const& text) const {
        std::ofstream(path(name)) << text;
        return path(name);
    }

    /// What is chosen, or the words of what is wrong; `FILE` stands for the path.
    std::string answer(ScriptFile const& wanted) const {
        try {
            auto const script = read_script_file(wanted);
            return chosen_process(*script, wanted).name;
        } catch (ScriptFileError const& error) {
            std::string words = error.wording().text;
            if (std::size_t const at = words.find(wanted.file); at != std::string::npos) {
                words.replace(at, wanted.file.size(), "FILE");
            }
            return words;
        } catch (ScriptErrors const& errors) {
            return errors.diagnostics().front().message;
        }
    }

  private:
    std::filesystem::path m_folder;
};

TEST_F(ScriptFileTest, ChoosesTheProcessThatIsWanted) {
    std::string const file = write("m.csp", "channel a : {0..2}\n"
                                            "N = 1\n"
                                            "P = a.0 -> STOP\n"
                                            "R(i) = a.i -> STOP\n"
                                            "Q = if N == 1 then P else R(N)\n");
    std::string const functions = write("f.csp", "channel a\nR(i) = a -> STOP\n");
    std::string const empty = write("e.csp", "channel a\n");
    struct Row {
        ScriptFile wanted;
        std::string answer;
    };
    Row const rows[] = {
        {{file, "", {}, {}}, "Q"},
        {{file, "P", {}, {}}, "P"},
        {{file, "R(2)", {}, {}}, "R(2)"},
        {{file, "P [] Q", {}, {}}, "P [] Q"},
        {{file, "X", {}, {}}, "FILE does not define 'X'; it defines: P, Q"},
        {{file, "", {"N"}, {}}, "--define wants NAME=VALUE, as in 'N=9', and not 'N'"},
        {{file, "", {"=2"}, {}}, "--define wants NAME=VALUE, as in 'N=9', and not '=2'"},
        {{file, "", {"N="}, {}}, "--define wants NAME=VALUE, as in 'N=9', and not 'N='"},
        {{functions, "", {}, {}},
         "FILE defines no process without parameters; 'R' is asked for as in --process 'R(0)'"},
        {{empty, "", {}, {}}, "FILE defines no process"},
        {{path("none.csp"), "", {}, {}}, "cannot read FILE: No such file or directory"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(answer(row.wanted), row.answer) << row.wanted.process;
    }
}

TEST_F(ScriptFileTest, DefinitionsTakeThePlaceOfTheScripts) {
    std::string const file = write("m.csp", "channel a : {0..2}\nN = 1\nP = a.N -> STOP\n");
    ScriptFile const wanted{file, "", {"N=2"}, {}};
    auto const script = read_script_file(wanted);
    EXPECT_EQ(answer(wanted), "P");
    EXPECT_EQ(Testing::printed_body(*script, "P"), "a.2 -> (STOP)");
}

TEST_F(ScriptFileTest, IncludesFromBesideWhatIncludes) {
    write("parts/one.csp", "include \"two.csp\"\nP = a -> STOP\n");
    write("parts/two.csp", "channel a\n");
    EXPECT_EQ(answer({write("m.csp", "include \"parts/one.csp\"\nQ = P\n"), "", {}, {}}), "Q");
    EXPECT_NE(answer({write("n.csp", "include \"two.csp\"\n"), "", {}, {}})
                  .find("No such file or directory"),
              std::string::npos);
    // However it is called, it is there already, and its events are not declared twice.
    EXPECT_EQ(
        answer({write("self.csp", "include \"parts/../self.csp\"\nchannel b\nS = b -> STOP\n"),
                "",
                {},
                {}}),
        "S");
}

} // namespace
} // namespace Calder::Script
