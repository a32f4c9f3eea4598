#include "script/script.h"
#include "state_space/deadlock.h"
#include "state_space/machine/machine_exploration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace Calder {
namespace {

/// What an example's opening comment says of one of its processes, in a line of its own such as
/// `-- LOCK: states 4, transitions 6, deadlock none`. These lines are the table of this test.
struct Claim {
    std::string process;
    std::string counts;
};

std::vector<Claim> claims_of(std::string const& text) {
    static std::regex const line("(^|\n)-- ([A-Za-z_][A-Za-z0-9_']*): (states [^\n]*)");
    std::vector<Claim> claims;
    for (std::sregex_iterator match(text.begin(), text.end(), line), end; match != end; ++match) {
        claims.push_back({(*match)[2], (*match)[3]});
    }
    return claims;
}

std::string deadlock_text(StateSpace::LabelledTransitionSystem const& lts,
                          ProcessCompiler::Session const& session) {
    auto const deadlock = StateSpace::find_deadlock(lts);
    if (!deadlock) {
        return "none";
    }
    std::string trace;
    for (unsigned const event : deadlock->trace) {
        trace += (trace.empty() ? "after " : ", ") + session.event_object(event)->name();
    }
    return trace.empty() ? "at the start" : trace;
}

std::string counts_of(StateSpace::LabelledTransitionSystem const& lts, StateSpace::Outcome outcome,
                      ProcessCompiler::Session const& session) {
    if (outcome != StateSpace::Outcome::complete) {
        return std::string(StateSpace::describe(outcome));
    }
    return "states " + std::to_string(lts.state_count()) + ", transitions " +
           std::to_string(lts.transition_count()) + ", deadlock " + deadlock_text(lts, session);
}

/// The counts of a process in the words of a claim, by its terms and by its machine.
void expect_counts(Script::Script const& script, Script::Script::Definition const& definition,
                   std::string const& claim) {
    StateSpace::RunOptions options;
    options.max_states = 100'000; // an example that has become infinite is to fail, not to hang
    auto const terms = StateSpace::explore(definition.term, script.processes(), options);
    EXPECT_EQ(counts_of(terms.lts, terms.outcome, script.session()), claim) << definition.name;
    auto const machine =
        StateSpace::explore_by_machine(definition.term, script.processes(), options);
    EXPECT_EQ(machine.run.refusal, "") << definition.name;
    EXPECT_EQ(counts_of(machine.run.lts, machine.run.outcome, script.session()), claim)
        << definition.name;
}

void check_example(std::filesystem::path const& file) {
    std::stringstream contents;
    contents << std::ifstream(file).rdbuf();
    std::string const text = contents.str();
    auto const [script, diagnostics] = Script::read_script(text);
    ASSERT_TRUE(script) << Script::render_all(diagnostics, file.filename().string(), text);

    bool claims_default = false;
    for (Claim const& claim : claims_of(text)) {
        auto const* const definition = script->find(claim.process);
        ASSERT_NE(definition, nullptr) << claim.process << " is not defined";
        expect_counts(*script, *definition, claim.counts);
        claims_default |= definition == &script->definitions().back();
    }
    EXPECT_TRUE(claims_default) << "nothing is said of the process that the command explores";
}

TEST(Examples, have_the_counts_that_their_opening_comments_derive) {
    std::vector<std::filesystem::path> files;
    for (auto const& entry : std::filesystem::directory_iterator(CALDER_EXAMPLES)) {
        if (entry.path().extension() == ".csp") {
            files.push_back(entry.path());
        }
    }
    ASSERT_FALSE(files.empty());
    std::sort(files.begin(), files.end());
    for (auto const& file : files) {
        SCOPED_TRACE(file.filename().string());
        check_example(file);
    }
}

} // namespace
} // namespace Calder
