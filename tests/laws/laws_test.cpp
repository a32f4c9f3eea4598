#include "script/script.h"
#include "state_space/bisimulation.h"
#include "state_space/exploration.h"
#include "tests/oracle/library_term.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

#include <optional>

namespace Calder {
namespace {

/// Two sides that are strongly bisimilar whatever P, Q and R are. `STOP [> P` is a silent step to P.
struct Law {
    char const* left;
    char const* right;
    char const* source;
};

// Hoare: Communicating Sequential Processes, 1985. Roscoe: The Theory and Practice of Concurrency,
// 1997, and Understanding Concurrent Systems, 2010. "Rules" follow at once from the firing rules.
// Many laws of these books hold for failures or traces only; the table has those that also hold for
// single silent steps.
// clang-format off
Law const laws[] = {
    {"P [] STOP", "P", "Roscoe 1997"},
    {"P [] Q", "Q [] P", "Hoare 1985, Roscoe 1997"},
    {"(P [] Q) [] R", "P [] (Q [] R)", "Hoare 1985, Roscoe 1997"},
    {"(P [] Q) [] R", "P [] Q [] R", "Rules"},
    {"a -> P [] a -> P", "a -> P", "Hoare 1985, Roscoe 1997"},
    {"P |~| Q |~| R", "R |~| P |~| Q", "Hoare 1985, Roscoe 1997"},
    {"P |~| P", "STOP [> P", "Hoare 1985, Roscoe 1997"},
    {"{a, b} -> P", "a -> P [] b -> P", "Hoare 1985"},
    {"{} -> P", "STOP", "Hoare 1985"},
    {"(P ; Q) ; R", "P ; Q ; R", "Hoare 1985, Roscoe 1997"},
    {"SKIP ; P", "STOP [> P", "Hoare 1985, Roscoe 1997"},
    {"STOP ; P", "STOP", "Hoare 1985"},
    {"a -> P ; Q", "a -> (P ; Q)", "Hoare 1985, Roscoe 1997"},
    {"(P |~| Q) ; R", "(P ; R) |~| (Q ; R)", "Roscoe 1997"},
    {"P /\\ STOP", "P", "Hoare 1985"},
    {"STOP /\\ P", "P", "Hoare 1985"},
    {"(P /\\ Q) /\\ R", "P /\\ (Q /\\ R)", "Hoare 1985"},
    {"SKIP /\\ P", "SKIP [] P", "Rules"},
    {"P ||| SKIP", "P", "Hoare 1985, Roscoe 1997"},
    {"P ||| Q", "Q ||| P", "Hoare 1985, Roscoe 1997"},
    {"(P ||| Q) ||| R", "P ||| (Q ||| R)", "Hoare 1985, Roscoe 1997"},
    {"(P ||| Q) ||| R", "P ||| Q ||| R", "Rules"},
    {"a -> P ||| b -> Q", "a -> (P ||| b -> Q) [] b -> (a -> P ||| Q)", "Hoare 1985, Roscoe 1997"},
    {"RUN({})", "STOP", "Hoare 1985"},
    {"RUN({a}) ||| RUN({a, b})", "RUN({a, b})", "Rules"},
    {"RUN({a, b})", "{a, b} -> RUN({a, b})", "Rules"},
    {"CHAOS({a, b})", "STOP |~| ({a, b} -> CHAOS({a, b}))", "Roscoe 1997"},
    {"P [| {a} |] Q", "Q [| {a} |] P", "Roscoe 1997"},
    {"(P [| {a} |] Q) [| {a} |] R", "P [| {a} |] (Q [| {a} |] R)", "Roscoe 1997"},
    {"(P [| {a} |] Q) [| {a} |] R", "P [| {a} |] Q [| {a} |] R", "Rules"},
    {"P [| {} |] Q", "P ||| Q", "Roscoe 1997"},
    {"P [{a, b, c} || {a, b, c}] Q", "P [| {a, b, c} |] Q", "Roscoe 1997"},
    {"P [{a, b} || {b, c}] Q", "Q [{b, c} || {a, b}] P", "Roscoe 1997"},
    {"(P [{a, b} || {b, c}] Q) [{a, b, c} || {c}] R",
     "|| (a, p) : {({a, b}, P)({b, c}, Q)({c}, R)} @ [a] p", "Roscoe 1997"},
    {"P [a <-> b, c <-> c] Q", "Q [b <-> a, c <-> c] P", "Roscoe 2010"},
    {"P [tick <-> tick] Q", "P ||| Q", "Rules"},
    {"P \\ {a} \\ {b}", "P \\ {a, b}", "Hoare 1985, Roscoe 1997"},
    {"P \\ {}", "P", "Roscoe 1997"},
    {"(P |~| Q) \\ {a}", "(P \\ {a}) |~| (Q \\ {a})", "Hoare 1985, Roscoe 1997"},
    {"(P [| {b} |] Q) \\ {a}", "(P \\ {a}) [| {b} |] (Q \\ {a})", "Hoare 1985, Roscoe 1997"},
    {"P |\\ {a}", "P \\ {b, c}", "Rules"},
    {"P[[a <- b, b <- b, c <- c]][[b <- c, c <- a]]", "P[[a <- c, b <- c, c <- a]]", "Roscoe 1997"},
    {"(P [] Q)[[a <- b, a <- c]]", "P[[a <- b, a <- c]] [] Q[[a <- b, a <- c]]", "Hoare 1985, Roscoe 1997"},
    {"P [| {} |> Q", "P", "Roscoe 2010"},
    {"STOP [| {a} |> Q", "STOP", "Roscoe 2010"},
    {"a -> P [| {a} |> Q", "a -> Q", "Roscoe 2010"},
    {"P [+ {a} +] Q", "Q [+ {a} +] P", "Roscoe 2010"},
    {"P [+ {} +] Q", "P [] Q", "Roscoe 2010"},
    {"P /+ {} +\\ Q", "P /\\ Q", "Roscoe 2010"},
};
// clang-format on

constexpr std::uint64_t rounds = 60;

/// P, Q and R of a round, and the sides of all laws, as a script.
std::string script_of_round(std::uint64_t seed) {
    ProcessCompiler::Session session;
    std::string script = "channel a, b, c\n";
    for (char const* const name : {"a", "b", "c"}) {
        session.declare_event(name);
    }
    std::mt19937_64 random(seed);
    for (char const* const name : {"P", "Q", "R"}) {
        ProcessCompiler::NamedProcessSource source;
        auto const term =
            Oracle::library_term(*Oracle::random_term(random, 4, {.as_written = true}), source);
        script +=
            std::string(name) + " = " + ProcessCompiler::Testing::text_of(session, *term) + "\n";
    }
    for (std::size_t i = 0; i < std::size(laws); ++i) {
        script += "L" + std::to_string(i) + " = " + laws[i].left + "\n";
        script += "R" + std::to_string(i) + " = " + laws[i].right + "\n";
    }
    return script;
}

/// A system too large for a test is left out.
std::optional<StateSpace::LabelledTransitionSystem> explored(Script::Script const& script,
                                                             std::string const& name) {
    StateSpace::ExplorationOptions options;
    options.max_states = 2000;
    auto exploration = StateSpace::explore(script.find(name)->term, script.processes(), options);
    if (exploration.outcome != StateSpace::Outcome::complete) {
        return std::nullopt;
    }
    return std::move(exploration.lts);
}

TEST(Laws, hold_for_random_processes) {
    std::vector<std::uint64_t> compared(std::size(laws));
    for (std::uint64_t seed = 1; seed <= rounds; ++seed) {
        std::string const text = script_of_round(seed);
        auto const read = Script::read_script(text);
        ASSERT_TRUE(read.script) << Script::render_all(read.diagnostics, "", text);
        for (std::size_t i = 0; i < std::size(laws); ++i) {
            auto const left = explored(*read.script, "L" + std::to_string(i));
            auto const right = explored(*read.script, "R" + std::to_string(i));
            if (left && right) {
                ++compared[i];
                EXPECT_TRUE(StateSpace::are_bisimilar(*left, *right))
                    << laws[i].left << " ~ " << laws[i].right << " (" << laws[i].source
                    << "), seed " << seed << "\n"
                    << text.substr(0, text.find("L0"));
            }
        }
    }
    for (std::size_t i = 0; i < std::size(laws); ++i) {
        EXPECT_GT(compared[i], rounds / 2) << laws[i].left << ": too few were small enough";
    }
}

} // namespace
} // namespace Calder
