#include "refinement/questions.h"
#include "script/script.h"
#include "state_space/bisimulation.h"
#include "state_space/exploration.h"
#include "tests/oracle/library_term.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace Calder {
namespace {

struct Law {
    std::string left;
    std::string right;
    bool is_same_term;
    std::string line;
};

/// A side may define something, but then names no source.
std::vector<Law> read_laws(std::string const& name) {
    std::vector<Law> laws;
    std::ifstream file(CALDER_LAWS + name);
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.front() != '#') {
            std::size_t const bisimilar = line.find(" ~ ");
            bool const is_same_term = bisimilar == std::string::npos;
            std::size_t const middle = is_same_term ? line.rfind(" = ") : bisimilar;
            std::size_t const end = line.find(" -- ");
            laws.push_back({line.substr(0, middle), line.substr(middle + 3, end - middle - 3),
                            is_same_term, line});
        }
    }
    return laws;
}

constexpr std::uint64_t rounds = 60;

/// P, Q and R of a round, what else the laws speak of, and the sides of them all, as a script.
template <typename Law> std::string
script_of_round(std::vector<Law> const& laws, std::string const& preamble, std::uint64_t seed) {
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
    script += preamble;
    for (std::size_t i = 0; i < laws.size(); ++i) {
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

std::string text_of(Script::Script const& script, std::string const& name) {
    return ProcessCompiler::Testing::text_of(script.session(), *script.find(name)->term);
}

void expect_laws(std::string const& name, std::string const& preamble) {
    std::vector<Law> const laws = read_laws(name);
    ASSERT_FALSE(laws.empty()) << name;
    std::vector<std::uint64_t> compared(laws.size());
    for (std::uint64_t seed = 1; seed <= rounds; ++seed) {
        std::string const text = script_of_round(laws, preamble, seed);
        auto const read = Script::read_script(text);
        ASSERT_TRUE(read.script) << Script::render_all(read.diagnostics, read.sources);
        for (std::size_t i = 0; i < laws.size(); ++i) {
            if (laws[i].is_same_term) {
                ++compared[i];
                EXPECT_EQ(text_of(*read.script, "L" + std::to_string(i)),
                          text_of(*read.script, "R" + std::to_string(i)))
                    << laws[i].line << ", seed " << seed;
                continue;
            }
            auto const left = explored(*read.script, "L" + std::to_string(i));
            auto const right = explored(*read.script, "R" + std::to_string(i));
            if (left && right) {
                ++compared[i];
                EXPECT_TRUE(StateSpace::are_bisimilar(*left, *right))
                    << laws[i].line << ", seed " << seed << "\n"
                    << text.substr(0, text.find("L0"));
            }
        }
    }
    for (std::size_t i = 0; i < laws.size(); ++i) {
        EXPECT_GT(compared[i], rounds / 2) << laws[i].line << ": too few were small enough";
    }
}

TEST(Laws, hold_for_random_processes) {
    expect_laws("laws.txt", "");
}

struct RefinementLaw {
    std::string left;
    std::string right;
    bool goes_both_ways;
    /// By model, whether it holds; nothing where that is not told.
    std::array<std::optional<bool>, 3> holds;
    std::string line;
};

std::vector<RefinementLaw> read_refinement_laws(std::string const& name) {
    std::vector<RefinementLaw> laws;
    std::ifstream file(CALDER_LAWS + name);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        std::size_t const colon = line.find(": ");
        std::size_t const equal = line.find(" == ");
        bool const goes_both_ways = equal != std::string::npos;
        std::size_t const middle = goes_both_ways ? equal : line.find(" [= ");
        RefinementLaw law{line.substr(colon + 2, middle - colon - 2),
                          line.substr(middle + 4, line.find(" -- ") - middle - 4),
                          goes_both_ways,
                          {},
                          line};
        std::istringstream models(line.substr(0, colon));
        for (std::string model; models >> model;) {
            bool const holds = model.front() != '!';
            std::string const letters = holds ? model : model.substr(1);
            law.holds.at(letters == "T" ? 0 : letters == "F" ? 1 : 2) = holds;
        }
        laws.push_back(std::move(law));
    }
    return laws;
}

/// Undecided where a side is too large for a test.
Refinement::Verdict verdict(Script::Script const& script, std::string const& number,
                            RefinementLaw const& law, Refinement::Model model, bool by_machine) {
    Refinement::QuestionOptions options;
    options.max_states = 2000;
    options.by_machine = by_machine;
    auto const ask = [&](char const* abstract, char const* concrete) {
        return Refinement::refinement(script.find(abstract + number)->term,
                                      script.find(concrete + number)->term, model,
                                      script.processes(), options)
            .verdict;
    };
    auto const there = ask("L", "R");
    return there == Refinement::Verdict::holds && law.goes_both_ways ? ask("R", "L") : there;
}

TEST(Laws, of_refinement_hold_in_their_models_and_break_in_others) {
    std::string const preamble = "DIV = RUN({a}) \\ {a}\n"
                                 "FULL = STOP |~| SKIP |~| ({a, b, c} -> FULL)\n"
                                 "MOST = SKIP [] ({a, b, c} -> MOST)\n";
    auto const laws = read_refinement_laws("refinement_laws.txt");
    ASSERT_FALSE(laws.empty());
    using Refinement::Verdict;
    std::vector<std::array<std::uint64_t, 3>> decided(laws.size());
    std::vector<std::array<std::uint64_t, 3>> failing(laws.size());
    for (std::uint64_t seed = 1; seed <= rounds; ++seed) {
        std::string const text = script_of_round(laws, preamble, seed);
        auto const read = Script::read_script(text);
        ASSERT_TRUE(read.script) << Script::render_all(read.diagnostics, read.sources);
        for (std::size_t i = 0; i < laws.size(); ++i) {
            for (std::size_t model = 0; model < 3; ++model) {
                if (!laws[i].holds[model]) {
                    continue;
                }
                auto const ask = [&](bool by_machine) {
                    return verdict(*read.script, std::to_string(i), laws[i],
                                   static_cast<Refinement::Model>(model), by_machine);
                };
                Verdict const by_machine = ask(true);
                Verdict const by_terms = ask(false);
                if (by_machine == Verdict::undecided || by_terms == Verdict::undecided) {
                    continue;
                }
                ++decided[i][model];
                failing[i][model] += by_machine == Verdict::fails ? 1 : 0;
                EXPECT_EQ(by_machine, by_terms) << laws[i].line;
                EXPECT_TRUE(by_machine == Verdict::holds || !*laws[i].holds[model])
                    << laws[i].line << ", model " << model << ", seed " << seed << "\n"
                    << text.substr(0, text.find("L0"));
            }
        }
    }
    for (std::size_t i = 0; i < laws.size(); ++i) {
        for (std::size_t model = 0; model < 3; ++model) {
            if (laws[i].holds[model]) {
                EXPECT_GT(decided[i][model], rounds / 2) << laws[i].line;
                EXPECT_EQ(failing[i][model] == 0, *laws[i].holds[model]) << laws[i].line;
            }
        }
    }
}

TEST(Laws, forms_over_values_are_what_they_are_written_out) {
    std::ifstream file(std::string(CALDER_LAWS) + "forms.csp");
    expect_laws("forms.txt", {std::istreambuf_iterator<char>(file), {}});
}

} // namespace
} // namespace Calder
