#include "pins/compiled_script.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Calder::Pins {
namespace {

std::string const ends = CALDER_ENDS "/ends.csp";
std::string const wrong = CALDER_ENDS "/wrong.csp";
std::string const none = CALDER_ENDS "/none.csp";

/// The names of the events that it can perform, or the words of what is wrong.
std::string answer(Script::ScriptFile const& wanted) {
    try {
        CompiledScript const compiled = compile_script(wanted);
        std::string names;
        for (unsigned const event : compiled.model.vectors->events()) {
            names +=
                (names.empty() ? "" : " ") + compiled.script->session().event_object(event)->name();
        }
        return names;
    } catch (...) {
        return words_of_current_exception();
    }
}

TEST(CompiledScript, CompilesTheProcessThatIsWanted) {
    struct Row {
        std::string process;
        std::vector<std::string> definitions;
        std::string events;
    };
    Row const rows[] = {
        {"", {}, "a.0 b.0"},
        {"HIDDEN", {}, "tau tick b.0"},
        {"COUNT(2)", {}, "tick a.1 a.2"},
        {"CHOSEN", {}, "tick a.0"},
        {"CHOSEN", {"N=2"}, "a.0"},
        {"COUNT(N)", {"N=1", "LOOP=STOP"}, "tick a.1"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(answer({ends, row.process, row.definitions, {}}), row.events) << row.process;
    }
}

TEST(CompiledScript, TellsWhatIsWrongAsTheCommandDoes) {
    struct Row {
        Script::ScriptFile wanted;
        std::string words;
    };
    Row const rows[] = {
        {{wrong, "", {}, {}},
         wrong + ":3:10: error: the process 'Q' is not defined\nP = a -> Q\n         ^\n" + wrong +
             ":4:5: error: the event 'b' is not declared\nR = b -> P\n    ^\n"},
        {{none, "", {}, {}}, "calder: cannot read " + none + ": No such file or directory\n"},
        {{ends, "", {"N"}, {}}, "calder: --define wants NAME=VALUE, as in 'N=9', and not 'N'\n"},
        {{ends, "COUNT", {}, {}},
         "calder: --process: 'COUNT' has 1 parameter: write what for, as in 'COUNT(…)'\n"},
        // What values show while it is compiled.
        {{ends, "COUNT(3)", {}, {}},
         ends + ":13:38: error: the event 'a.3' is not declared: 3 is no value of field 1 of 'a'\n"
                "COUNT(i) = if i == 0 then SKIP else (a.i -> COUNT(i - 1))\n"
                "                                     ^~~\n"
                "  in COUNT(3), called at --process:1:1\n"},
        {{ends, "UP(0)", {}, {}},
         "calder: UP(0) cannot be compiled for an engine of vectors: term by term it has "
         "more than 1000000 states\n"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(answer(row.wanted), row.words);
    }
}

} // namespace
} // namespace Calder::Pins
