#include "process_compiler/session.h"
#include "state_space/lts_files.h"
#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/run.h"
#include "state_space/machine/run/team.h"
#include "state_space/machine/run/visited_states.h"
#include "tests/state_space/machine/fake_construct.h"
#include "tests/state_space/temporary_directory.h"

#include <gtest/gtest.h>

#include <random>

namespace Calder::StateSpace {
namespace {

using namespace Testing;
using Random = std::mt19937;

/// So small that rounds are many, even of few states; these are kept as they are, or as roots of a tree.
constexpr Cut fine_cuts[] = {{.steps_of_job = 1, .least_jobs_of_round = 1, .most_plain_words = 0},
                             {.steps_of_job = 5, .least_jobs_of_round = 2},
                             {.steps_of_job = 64, .least_jobs_of_round = 1, .most_plain_words = 1}};

/// Events 3 to 7; often several with the same target, or the same event.
ProcessPointer random_leaf(Random& random, unsigned number) {
    Rows rows(3 + random() % 8);
    for (Row& row : rows) {
        for (unsigned i = 0; i < 1 + random() % 3; ++i) {
            row.emplace_back(3 + random() % 5, random() % rows.size());
        }
    }
    return leaf("leaf" + std::to_string(number), rows);
}

/// Rules for some of the arguments and some of their events. Where there are several formats, each runs other
/// arguments, and some rules lead from one to another.
FormatMaker random_formats(Random& random, unsigned arguments, unsigned format_count) {
    std::vector<UnCompiledFormat> formats;
    for (unsigned format = 0; format < format_count; ++format) {
        std::vector<unsigned> active;
        std::vector<PlainRule> rules;
        for (unsigned argument = 0; argument < arguments; ++argument) {
            if (format_count == 1 || random() % 4 != 0) {
                active.push_back(argument);
                for (unsigned event = 3; event < 8; ++event) {
                    rules.push_back({event, format, {{argument, event}}});
                }
            }
        }
        for (unsigned i = 0; i < 4 && active.size() > 1; ++i) {
            unsigned const one = active[random() % active.size()];
            unsigned const other = active[random() % active.size()];
            if (one != other) {
                auto const event = static_cast<unsigned>(3 + random() % 5);
                auto const target =
                    static_cast<unsigned>(random() % 3 == 0 ? random() % format_count : format);
                rules.push_back({event + 2,
                                 target,
                                 {{std::min(one, other), event}, {std::max(one, other), event}}});
            }
        }
        formats.push_back(format_of(active, rules));
    }
    return always(formats);
}

/// Up to some 10,000 states, of one word or, with more arguments than they need, of several.
ProcessPointer random_term(Random& random, unsigned number) {
    std::vector<ProcessPointer> arguments;
    auto const argument_count = static_cast<unsigned>(3 + random() % 3);
    for (unsigned i = 0; i < argument_count; ++i) {
        arguments.push_back(random_leaf(random, i));
    }
    unsigned const moving = static_cast<unsigned>(arguments.size());
    bool const is_wide = random() % 3 == 0;
    for (unsigned i = 0; i < (is_wide ? 20 : 0); ++i) { // each takes bits, and most never move
        arguments.push_back(ring("ring" + std::to_string(i), 600, 100 + i));
    }
    unsigned const formats = random() % 2 == 0 ? 1 : 3;
    FormatMaker const maker = random_formats(random, moving, formats);
    return construct("Random" + std::to_string(number), arguments,
                     [maker, is_wide, moving](Alphabets const& alphabets) {
                         Formats all = maker(alphabets);
                         for (auto& format : all) {
                             for (unsigned i = moving; is_wide && i < moving + 20; ++i) {
                                 format.active_components.push_back(i);
                             }
                         }
                         return all;
                     });
}

StateSpace::Run run_cut(Machine const& machine, RunOptions const& options, Cut const& cut) {
    ConfigurationTables tables(machine);
    return run(tables, options, cut);
}

std::vector<Word> words_of(StateSpace::Run const& run) {
    std::vector<Word> words;
    for (StateNumber state = 0; state < run.state_count; ++state) {
        std::vector<Word> const each = run.states->words(state);
        words.insert(words.end(), each.begin(), each.end());
    }
    return words;
}

class MachineRunByTeam : public TemporaryDirectory {
  protected:
    std::string file_of(StateSpace::Run const& run) const {
        ProcessCompiler::Session session;
        for (unsigned event = 3; event < 150; ++event) {
            session.declare_event("e" + std::to_string(event));
        }
        write_lts_file(path("run.aut"), run.lts, session);
        return contents(path("run.aut"));
    }
};

void expect_the_same_counts(StateSpace::Run const& found, StateSpace::Run const& wanted,
                            std::string const& what) {
    EXPECT_EQ(found.outcome, wanted.outcome) << what;
    EXPECT_EQ(found.state_count, wanted.state_count) << what;
    EXPECT_EQ(found.transition_count, wanted.transition_count) << what;
}

/// Everything that a run tells.
void expect_the_same(StateSpace::Run const& found, StateSpace::Run const& wanted,
                     std::string const& what) {
    expect_the_same_counts(found, wanted, what);
    EXPECT_EQ(found.lts.state_count(), wanted.lts.state_count()) << what;
    EXPECT_TRUE(rows_of(found.lts) == rows_of(wanted.lts)) << what;
    ASSERT_EQ(found.states->width(), wanted.states->width()) << what;
    EXPECT_TRUE(words_of(found) == words_of(wanted)) << what;
}

/// Whether states are numbered or only counted, and where a limit ends it.
TEST_F(MachineRunByTeam, random_machines_give_what_one_thread_gives) {
    unsigned const seed = 20'261;
    Random random(seed);
    unsigned large = 0;
    unsigned wide = 0;
    unsigned counted_by_team = 0;
    for (unsigned number = 0; number < 50; ++number) {
        auto const machine = machine_of(random_term(random, number));
        StateSpace::Run const all = run_cut(*machine, {{20'000}}, {});
        large += all.state_count > 500 ? 1 : 0;
        wide += all.states->width() > 1 ? 1 : 0;
        std::vector<StateNumber> limits = {20'000U, all.state_count, all.state_count - 1,
                                           all.state_count / 2};
        if (all.outcome == Outcome::complete) {
            limits.push_back(no_state);
            counted_by_team += all.state_count > 500 ? 1 : 0;
        }
        for (StateNumber const limit : limits) {
            StateSpace::Run const wanted = run_cut(*machine, {{limit}}, {});
            for (auto const& [keep, is_alone] :
                 {std::pair{true, false}, {false, false}, {false, true}}) {
                RunOptions options{{limit}, keep};
                options.threads = is_alone ? 1 : static_cast<unsigned>(2 + random() % 7);
                Cut const& cut = fine_cuts[random() % 3];
                StateSpace::Run const found = run_cut(*machine, options, cut);
                std::string const what = "seed " + std::to_string(seed) + ", machine " +
                                         std::to_string(number) + ", limit " +
                                         std::to_string(limit) + ", threads " +
                                         std::to_string(options.threads) + ", jobs of " +
                                         std::to_string(cut.steps_of_job) + (keep ? ", kept" : "");
                if (keep) {
                    expect_the_same(found, wanted, what);
                } else {
                    expect_the_same_counts(found, wanted, what);
                }
                if (keep && limit == all.state_count && number % 10 == 0) {
                    EXPECT_EQ(file_of(found), file_of(wanted)) << what;
                }
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
    EXPECT_GE(large, 8U) << "most are too small for anything to be shared";
    EXPECT_GE(wide, 8U) << "most have states of one word";
    EXPECT_GE(counted_by_team, 5U) << "most are too large to be counted to the end";
}

/// Wide rows come by surprise, with more states than the round has room for.
TEST_F(MachineRunByTeam, what_a_round_has_no_room_for_one_thread_does) {
    Rows rows(9'000);
    for (unsigned state = 0; state < 300; ++state) {
        for (unsigned i = 0; i < 2; ++i) {
            rows[state].emplace_back(3 + i, (2 * state + 1 + i) % 300);
        }
    }
    for (unsigned target = 300; target < 9'000; ++target) {
        rows[target % 7 + 150].emplace_back(5, target);
        rows[target].emplace_back(6, target / 2);
    }
    auto const machine =
        machine_of(construct("Surprise", {leaf("surprise", rows), ring("ring", 3, 7)}));
    RunOptions options;
    StateSpace::Run const wanted = run_cut(*machine, options, {});
    ASSERT_EQ(wanted.state_count, 27'000U);
    for (unsigned const threads : {2U, 4U}) {
        options.threads = threads;
        for (Cut const& cut : fine_cuts) {
            options.keep_transitions = true;
            expect_the_same(run_cut(*machine, options, cut), wanted, "surprise");
            options.keep_transitions = false;
            expect_the_same_counts(run_cut(*machine, options, cut), wanted, "counted surprise");
        }
    }
}

ProcessPointer rings(unsigned count, unsigned size) {
    std::vector<ProcessPointer> arguments;
    for (unsigned i = 0; i < count; ++i) {
        arguments.push_back(ring("ring" + std::to_string(i), size, 3 + i));
    }
    return construct("Rings", arguments);
}

TEST_F(MachineRunByTeam, whoever_watches_may_end_it_after_each_round) {
    auto const machine = machine_of(rings(7, 4));
    Rows const all = rows_of(run_cut(*machine, {}, {}).lts);
    for (unsigned const last_look : {1U, 3U, 7U, 10U, 2U, 6U, 9U}) {
        bool const keep = last_look % 2 == 1 || last_look == 10;
        Progress seen;
        unsigned looks = 0;
        RunOptions options;
        options.threads = 3;
        options.keep_transitions = keep;
        options.progress = [&](Progress const& progress) {
            seen = progress;
            return ++looks < last_look;
        };
        StateSpace::Run const found = run_cut(*machine, options, fine_cuts[1]);
        EXPECT_EQ(found.outcome, Outcome::interrupted);
        EXPECT_EQ(seen.states, found.state_count);
        EXPECT_EQ(seen.explored * 7, found.transition_count);
        EXPECT_EQ(seen.frontier, seen.states - seen.explored);
        ASSERT_LT(seen.explored, all.size());
        if (!keep) {
            continue;
        }
        EXPECT_EQ(seen.explored, found.lts.explored_count());
        EXPECT_TRUE(rows_of(found.lts) ==
                    Rows(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(seen.explored)));
    }
}

/// The last state of a long chain leads to what cannot be flattened.
TEST_F(MachineRunByTeam, a_configuration_that_is_refused_ends_it) {
    NamedProcessSource source;
    ProcessPointer const endless = source.reference("P");
    source.define("P", construct("Endless", {ring("a", 2, 3), endless}));
    Rows chain(100);
    for (unsigned state = 0; state < 99; ++state) {
        chain[state].emplace_back(4, state + 1);
    }
    chain[99].emplace_back(6, 99);
    UnCompiledFormat const before =
        format_of({0, 1}, {{4, 0, {{0, 4}}}, {5, 0, {{1, 5}}}, {6, 1, {{0, 6}}}});
    UnCompiledFormat const between = format_of({0}, {{6, 2, {{0, 6}}}});
    UnCompiledFormat const after = format_of({2}, {{3, 2, {{2, 3}}}});
    auto const machine =
        machine_of(construct("C", {leaf("chain", chain), ring("c", 80, 5), endless},
                             always({before, between, after})),
                   source);
    for (auto const& [threads, keep] :
         {std::pair{1U, true}, {3U, true}, {1U, false}, {3U, false}}) {
        RunOptions options;
        options.threads = threads;
        options.keep_transitions = keep;
        StateSpace::Run const found = run_cut(*machine, options, fine_cuts[1]);
        EXPECT_EQ(found.refusal, "it nests too deeply for the stack") << threads << keep;
        EXPECT_GT(found.state_count, 4'000U) << threads << keep;
    }
}

TEST(MachineVisitedStates, of_a_table_filled_by_a_team_are_all_found) {
    Team team(4);
    VisitedStates states(1);
    states.make_room(200'000);
    for (Word word = 0; word < 200'000; ++word) {
        Word const spread = word << 20;
        states.find_or_add(&spread, VisitedStates::hash(&spread, 1), no_state);
    }
    states.make_room(3'000'000, &team);
    for (Word word = 0; word < 200'000; ++word) {
        Word const spread = word << 20;
        ASSERT_EQ(states.find_or_add(&spread, VisitedStates::hash(&spread, 1), 0), word);
    }
}

} // namespace
} // namespace Calder::StateSpace
