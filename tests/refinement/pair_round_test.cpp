#include "refinement/observers.h"
#include "refinement/pair_search.h"
#include "tests/refinement/random_systems.h"
#include "tests/support/seeds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iostream>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using StateSpace::Cut;
using StateSpace::Outcome;
using namespace StateSpace::Testing;

NamedProcessSource const source;

/// So small that rounds are many, even of few pairs, and leave parts of levels and batches to one thread; states are
/// roots of a tree, or as they are.
constexpr std::array fine_cuts{Cut{2, 2, 3, 0}, Cut{30, 2, 2, 4}, Cut{64, 1, 2, 0}};

constexpr Cut plain(Cut cut) {
    cut.most_plain_words = ~std::uint32_t{0};
    return cut;
}

/// Everything that a search tells.
struct Told {
    bool operator==(Told const&) const = default;

    Outcome outcome = Outcome::complete;
    std::uint64_t transitions = 0;
    StateNumber explored = 0;
    std::vector<StateNumber> parents{};
    std::vector<NodeNumber> nodes{};
    std::vector<Word> states{};
    /// Of what was found: its kind, or -1, and the rest of it.
    int kind = -1;
    StateNumber pair = 0;
    unsigned event = 0;
    std::vector<Word> target{};
    std::vector<StateNumber> loop{};
};

struct Searched {
    ProcessPointer abstract;
    ProcessPointer concrete;
    StateNumber max_states;
};

using MakeObserver = std::function<std::unique_ptr<Observer>(Side&, Side&, SearchMonitor&)>;

template <Model model>
std::unique_ptr<Observer> refinement_in(Side& abstract, Side&, SearchMonitor& monitor) {
    return std::make_unique<RefinementObserver>(abstract, model, monitor);
}

/// What every question makes of the two sides.
struct Question {
    char const* name;
    MakeObserver make;
};

std::vector<Question> questions() {
    static BitSet const b_only{b};
    static std::vector<unsigned> const trace{a, b};
    return {
        {"traces", refinement_in<Model::traces>},
        {"failures", refinement_in<Model::failures>},
        {"failures and divergences", refinement_in<Model::failures_divergences>},
        {"deadlock",
         [](Side&, Side&, SearchMonitor&) { return std::make_unique<DeadlockObserver>(); }},
        {"divergence",
         [](Side&, Side&, SearchMonitor&) { return std::make_unique<LoopObserver>(); }},
        {"determinism",
         [](Side&, Side& concrete, SearchMonitor& monitor) {
             return std::make_unique<DeterminismObserver>(concrete, monitor);
         }},
        {"uniformity",
         [](Side&, Side& concrete, SearchMonitor& monitor) {
             return std::make_unique<UniformityObserver>(concrete, monitor, 300);
         }},
        {"never",
         [](Side&, Side&, SearchMonitor&) { return std::make_unique<NeverObserver>(b_only); }},
        {"trace",
         [](Side&, Side&, SearchMonitor&) { return std::make_unique<TraceObserver>(trace); }},
        {"refusal",
         [](Side&, Side&, SearchMonitor&) { return std::make_unique<RefusalObserver>(trace, b); }},
    };
}

/// The same words that one thread finds, also where nodes made them wider.
void tell_pairs(VisitedPairs const& pairs, Side const& side, Told& told) {
    std::vector<Word> state(pairs.state_width());
    for (StateNumber pair = 0; pair < pairs.size(); ++pair) {
        pairs.read_state(pair, state.data());
        std::vector<Word> const words = side.machine_words(state.data());
        told.states.insert(told.states.end(), words.begin(), words.end());
        told.nodes.push_back(pairs.node(pair));
        told.parents.push_back(pairs.parent(pair));
    }
}

Told search(Searched const& searched, MakeObserver const& make, unsigned threads, Cut const& cut) {
    StateSpace::ExplorationOptions options;
    options.max_states = searched.max_states;
    SearchMonitor monitor(options, SearchMonitor::longest_for_machines);
    auto const abstract = make_side(searched.abstract, source, options, true, monitor, cut);
    auto const concrete = make_side(searched.concrete, source, options, true, monitor, cut);
    EXPECT_NE(concrete.side->machine(), nullptr);
    auto const observer = make(*abstract.side, *concrete.side, monitor);
    PairSearch pairs(*concrete.side, *observer, monitor, threads, cut);
    Told told;
    try {
        if (auto const found = pairs.run()) {
            told.kind = static_cast<int>(found->kind);
            told.pair = found->pair;
            told.event = found->event;
            if (!found->target.empty()) {
                told.target = concrete.side->machine_words(found->target.data());
            }
            told.loop = found->loop;
        }
        told.explored = pairs.explored_count();
    } catch (StateSpace::SearchEnded const&) { // the monitor knows why
    }
    told.outcome = monitor.outcome();
    told.transitions = pairs.transition_count();
    tell_pairs(pairs.pairs(), *concrete.side, told);
    return told;
}

/// For the concrete side: something that it refines, or nearly.
ProcessPointer random_abstract(ProcessPointer const& concrete, Random& random) {
    switch (below(random, 4)) {
    case 0: return term_of({{{a, 0}, {b, 0}, {tick, 1}}, {}}, "run");
    case 1: return term_of({{{tau, 1}, {tau, 2}}, {{a, 0}, {b, 0}, {tick, 2}}, {}}, "chaos");
    case 2: return term_of(relative_of(rows_of_machine(concrete), random), "relative");
    default: return concrete;
    }
}

TEST(PairRounds, OfRandomMachinesGiveWhatOneThreadGives) {
    Calder::Testing::SeedRange const seeds =
        Calder::Testing::one_of(100, Calder::Testing::seeds_from_environment(4000));
    std::array<unsigned, 4> kinds{};
    unsigned large = 0;
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        Random random(seed);
        ProcessPointer const concrete =
            below(random, 4) == 0 ? random_machine(random) : random_network(random);
        Searched searched{random_abstract(concrete, random), concrete, 3'000};
        for (Question const& question : questions()) {
            Cut const& cut = fine_cuts[below(random, fine_cuts.size())];
            Told const all = search(searched, question.make, 1, cut);
            auto const size = static_cast<StateNumber>(all.parents.size());
            ++kinds[static_cast<std::size_t>(all.kind + 1)];
            large += size > 200 ? 1 : 0;
            std::array const limits{3'000U, std::max(size, 1U), std::max(size, 2U) - 1,
                                    size / 2 + 1};
            searched.max_states = limits[below(random, limits.size())];
            auto const threads = std::array{2U, 3U, 8U}[below(random, 3)];
            Told const wanted = search(searched, question.make, 1, plain(cut));
            Told const found = search(searched, question.make, threads, cut);
            EXPECT_EQ(found.parents.size(), wanted.parents.size());
            EXPECT_EQ(found.transitions, wanted.transitions);
            ASSERT_TRUE(found == wanted) << "CALDER_SEED=" << seed << ": " << question.name
                                         << ", limit " << searched.max_states << ", " << threads
                                         << " threads, jobs of " << cut.steps_of_job;
            searched.max_states = 3'000;
        }
    }
    std::cout << large << " searches of more than 200 pairs; " << kinds[1] << " events, "
              << kinds[2] << " offers, " << kinds[3] << " loops\n";
    if (seeds.end - seeds.first >= 20) {
        EXPECT_GE(large, seeds.end - seeds.first) << "most are too small for rounds";
        for (unsigned const count : kinds) {
            EXPECT_GE(count, (seeds.end - seeds.first) / 2);
        }
    }
}

/// States become wider on the way, and so do nodes.
TEST(PairRounds, StatesMayGrowWiderOnTheWay) {
    ProcessPointer const machine = growing_machine();
    for (Rows const& abstract : {Rows{{{a, 0}, {b, 0}}}, Rows{{{a, 1}, {b, 0}}, {{a, 1}, {b, 0}}},
                                 Rows{{{a, 0}, {b, 1}}, {{a, 1}, {b, 2}}, {{a, 2}}}}) {
        Searched const searched{term_of(abstract, "A"), machine, 3'000};
        for (Question const& question : questions()) {
            Told const wanted = search(searched, question.make, 1, plain(fine_cuts[2]));
            EXPECT_TRUE(search(searched, question.make, 3, fine_cuts[2]) == wanted)
                << question.name;
        }
    }
}

/// They have two bits, which the traces of the first levels fill.
TEST(PairRounds, NodesMayOutgrowTheirBits) {
    std::vector<ProcessPointer> leaves{leaf("bits", {{{b, 1}}, {{b, 2}}, {{b, 0}}})};
    for (unsigned i = 0; i < 6; ++i) {
        leaves.push_back(ring("ring" + std::to_string(i), 1'000, a));
    }
    Rows counted(20);
    for (unsigned state = 0; state < counted.size(); ++state) {
        counted[state] = {{a, std::min(state + 1, 19U)}, {b, state}};
    }
    Searched const searched{term_of(counted, "counted"), construct("full", leaves), 3'000};
    for (Cut const& cut : fine_cuts) {
        Told const wanted = search(searched, refinement_in<Model::traces>, 1, cut);
        EXPECT_GT(*std::max_element(wanted.nodes.begin(), wanted.nodes.end()), 3U);
        EXPECT_TRUE(search(searched, refinement_in<Model::traces>, 3, cut) == wanted);
    }
}

/// For messages and to compare: events, numbers, and what each leaf does.
std::string text_of(std::vector<EvidenceStep> const& steps) {
    std::string text;
    for (EvidenceStep const& step : steps) {
        text += std::to_string(step.source.number) + " " + std::to_string(step.event) + " " +
                std::to_string(step.target) + ":";
        for (SlotState const& slot : step.source.slots) {
            text += " " + std::to_string(slot.state);
        }
        for (auto const& participant : step.participants) {
            text +=
                " " + std::to_string(participant.slot) + "." + std::to_string(participant.event);
        }
        text += "; ";
    }
    return text;
}

std::string text_of(Answer const& answer) {
    Evidence const& evidence = answer.evidence;
    std::string text = std::to_string(static_cast<int>(answer.verdict)) + " " +
                       std::to_string(static_cast<int>(evidence.reason)) + " " +
                       std::to_string(answer.state_count) + " " +
                       std::to_string(answer.transition_count) + " " +
                       std::to_string(evidence.event) + " " + std::to_string(evidence.end.number);
    return text + " | " + text_of(evidence.steps) + " | " + text_of(evidence.loop) + " | " +
           text_of(evidence.other);
}

constexpr unsigned ring_count = 8;

/// Rings of four, which make levels large, beside a leaf that does something else after so many steps, and
/// perhaps stops then. The leaf goes from state to state by `event`.
ProcessPointer beside_rings(unsigned steps, Row const& last, unsigned event = b) {
    Rows rows(steps + 2);
    for (unsigned state = 0; state < steps; ++state) {
        rows[state].emplace_back(event, state + 1);
    }
    rows[steps] = last;
    std::vector<ProcessPointer> leaves{leaf("deep", rows)};
    for (unsigned i = 0; i < ring_count; ++i) {
        leaves.push_back(ring("ring" + std::to_string(i), 4, a + 2 + i));
    }
    return construct("beside rings", leaves);
}

/// The events of those rings and of what stands beside them, all of which come in every state.
ProcessPointer everything() {
    Rows rows(1);
    for (unsigned event = b; event < a + 2 + ring_count; ++event) {
        rows[0].emplace_back(event, 0);
    }
    return term_of(rows, "everything");
}

/// The same, with a state for each b up to so many.
ProcessPointer everything_by(unsigned steps) {
    Rows rows(steps + 1);
    for (unsigned state = 0; state <= steps; ++state) {
        rows[state].emplace_back(b, std::min(state + 1, steps));
        for (unsigned event = a + 2; event < a + 2 + ring_count; ++event) {
            rows[state].emplace_back(event, state);
        }
    }
    return term_of(rows, "everything by and by");
}

/// Levels of thousands of pairs, cut as they are for everyone.
TEST(PairRounds, AnswersAreTheSameHoweverDeep) {
    constexpr unsigned steps = 11;
    using Ask = std::function<Answer(QuestionOptions const&)>;
    struct Row {
        Reason reason;
        Ask ask;
    };
    ProcessPointer const loop = beside_rings(steps, {{tau, steps}});
    ProcessPointer const stop = beside_rings(steps, {});
    ProcessPointer const event = beside_rings(steps, {{a, 0}, {b, 0}});
    ProcessPointer const choice = beside_rings(steps, {{b, 0}, {b, steps + 1}});
    ProcessPointer const silent = beside_rings(steps, {}, tau);
    std::vector<Row> const rows{
        {Reason::none,
         [&](auto const& options) {
             return refinement(everything(), stop, Model::traces, source, options);
         }},
        {Reason::refusal,
         [&](auto const& options) {
             return refinement(everything_by(steps), stop, Model::failures, source, options);
         }},
        // What the abstract side accepts is asked for the first time where all else is known.
        {Reason::refusal,
         [&](auto const& options) {
             return refinement(everything(), silent, Model::failures, source, options);
         }},
        {Reason::event,
         [&](auto const& options) {
             return refinement(everything(), event, Model::failures_divergences, source, options);
         }},
        {Reason::event,
         [&](auto const& options) { return never(event, BitSet{a}, source, options); }},
        {Reason::divergence,
         [&](auto const& options) { return divergence_free(loop, source, options); }},
        {Reason::nondeterminism,
         [&](auto const& options) { return deterministic(choice, source, options); }},
    };
    for (Row const& row : rows) {
        Answer const wanted = row.ask({});
        EXPECT_EQ(wanted.evidence.reason, row.reason);
        EXPECT_GT(wanted.state_count, 80'000U);
        for (unsigned const threads : {2U, 5U}) {
            QuestionOptions options;
            options.threads = threads;
            EXPECT_EQ(text_of(row.ask(options)), text_of(wanted)) << threads;
        }
    }
}

/// Nobody waits for what is still being explored.
TEST(PairRounds, WhoeverWatchesMayEndIt) {
    ProcessPointer const process = beside_rings(8, {});
    for (unsigned const last_look : {1U, 3U, 9U}) {
        unsigned looks = 0;
        QuestionOptions options;
        options.threads = 3;
        options.progress = [&](StateSpace::Progress const&) { return ++looks < last_look; };
        Answer const answer = deadlock_free(process, source, options);
        EXPECT_EQ(answer.outcome, Outcome::interrupted);
        EXPECT_EQ(looks, last_look);
    }
}

} // namespace
} // namespace Calder::Refinement::Testing
