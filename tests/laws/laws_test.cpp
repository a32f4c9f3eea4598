#include "csp/alphabetised_parallel_operator.h"
#include "csp/chaos_process.h"
#include "csp/event_set_prefix_process.h"
#include "csp/exception_operator.h"
#include "csp/external_choice_process.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/hide_operator.h"
#include "csp/interleave_process.h"
#include "csp/internal_choice_process.h"
#include "csp/interrupt_process.h"
#include "csp/linked_parallel_operator.h"
#include "csp/prefix_process.h"
#include "csp/project_operator.h"
#include "csp/rename_operator.h"
#include "csp/run_process.h"
#include "csp/sequential_composition_process.h"
#include "csp/sliding_choice_process.h"
#include "csp/synchronising_external_choice_operator.h"
#include "csp/synchronising_interrupt_operator.h"
#include "state_space/bisimulation.h"
#include "state_space/exploration.h"
#include "tests/oracle/library_term.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

#include <functional>

namespace Calder {
namespace {

using namespace ProcessCompiler;
using namespace ProcessCompiler::CSP;

constexpr unsigned a = 3;
constexpr unsigned b = 4;
constexpr unsigned c = 5;

using Terms = std::initializer_list<ProcessPointer>;

ProcessPointer prefix(unsigned event, ProcessPointer const& p) {
    return new PrefixProcess(event, p);
}
ProcessPointer set_prefix(BitSet const& events, ProcessPointer const& p) {
    return new EventSetPrefixProcess(events, p);
}
ProcessPointer external(Terms of) {
    return new ExternalChoiceProcess(OwningArray<ProcessPointer>(of));
}
ProcessPointer internal(Terms of) {
    return new InternalChoiceProcess(OwningArray<ProcessPointer>(of));
}
ProcessPointer interleave(Terms of) {
    return new InterleaveProcess(OwningArray<ProcessPointer>(of));
}
ProcessPointer sliding(ProcessPointer const& p, ProcessPointer const& q) {
    return new SlidingChoiceProcess(p, q);
}
ProcessPointer sequence(ProcessPointer const& p, ProcessPointer const& q) {
    return new SequentialCompositionProcess(p, q);
}
ProcessPointer interrupt(ProcessPointer const& p, ProcessPointer const& q) {
    return new InterruptProcess(p, q);
}
ProcessPointer run(BitSet const& events) {
    return new RunProcess(events);
}
ProcessPointer chaos(BitSet const& events) {
    return new ChaosProcess(events);
}
ProcessPointer stop() {
    return external({});
}
ProcessPointer skip() {
    return interleave({});
}

ProcessPointer parallel(BitSet const& events, Terms of) {
    return new OperatorProcess(new GeneralisedParallelOperator(events),
                               OwningArray<ProcessPointer>(of));
}
ProcessPointer alphabetised(std::vector<BitSet> const& alphabets, Terms of) {
    return new OperatorProcess(new AlphabetisedParallelOperator(alphabets),
                               OwningArray<ProcessPointer>(of));
}
ProcessPointer linked(LinkedParallelOperator::Links const& links, ProcessPointer const& p,
                      ProcessPointer const& q) {
    return new OperatorProcess(new LinkedParallelOperator(links), p, q);
}
ProcessPointer hide(ProcessPointer const& p, BitSet const& events) {
    return new OperatorProcess(new HideOperator(events), p);
}
ProcessPointer project(ProcessPointer const& p, BitSet const& events) {
    return new OperatorProcess(new ProjectOperator(events), p);
}
ProcessPointer rename(ProcessPointer const& p, FixedArray<std::pair<unsigned, unsigned>> const& r) {
    return new OperatorProcess(new RenameOperator(r), p);
}
ProcessPointer exception(ProcessPointer const& p, BitSet const& events, ProcessPointer const& q) {
    return new OperatorProcess(new ExceptionOperator(events), p, q);
}
ProcessPointer sync_choice(BitSet const& events, Terms of) {
    return new OperatorProcess(new SynchronisingExternalChoiceOperator(events),
                               OwningArray<ProcessPointer>(of));
}
ProcessPointer sync_interrupt(ProcessPointer const& p, BitSet const& events,
                              ProcessPointer const& q) {
    return new OperatorProcess(new SynchronisingInterruptOperator(events), p, q);
}

using P = ProcessPointer const&;

/// Two sides that are strongly bisimilar whatever P, Q and R are. "Later" is a silent step to a
/// process: the internal choice of only that one.
struct Law {
    char const* name;
    char const* source;
    std::function<ProcessPointer(P, P, P)> left;
    std::function<ProcessPointer(P, P, P)> right;
};

ProcessPointer later(P p) {
    return internal({p});
}

// Hoare: Communicating Sequential Processes, 1985. Roscoe: The Theory and Practice of Concurrency,
// 1997, and Understanding Concurrent Systems, 2010. "Rules" follow at once from the firing rules. Many laws of these books hold for failures or
// traces only; the table has those that also hold for single silent steps.
// clang-format off
Law const laws[] = {
    {"STOP is the unit of external choice", "Roscoe 1997",
        [](P p, P, P) { return external({p, stop()}); }, [](P p, P, P) { return p; }},
    {"external choice is commutative", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return external({p, q}); }, [](P p, P q, P) { return external({q, p}); }},
    {"external choice is associative", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P r) { return external({external({p, q}), r}); },
        [](P p, P q, P r) { return external({p, external({q, r})}); }},
    {"nested external choices are one", "Rules",
        [](P p, P q, P r) { return external({external({p, q}), r}); },
        [](P p, P q, P r) { return external({p, q, r}); }},
    {"external choice of prefixes is idempotent", "Hoare 1985, Roscoe 1997",
        [](P p, P, P) { return external({prefix(a, p), prefix(a, p)}); },
        [](P p, P, P) { return prefix(a, p); }},

    {"internal choice is commutative", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P r) { return internal({p, q, r}); },
        [](P p, P q, P r) { return internal({r, p, q}); }},
    {"internal choice is idempotent", "Hoare 1985, Roscoe 1997",
        [](P p, P, P) { return internal({p, p}); }, [](P p, P, P) { return later(p); }},
    {"internal choice of nothing is STOP", "Rules",
        [](P, P, P) { return internal({}); }, [](P, P, P) { return stop(); }},

    {"a set prefix is a choice of prefixes", "Hoare 1985",
        [](P p, P, P) { return set_prefix({a, b}, p); },
        [](P p, P, P) { return external({prefix(a, p), prefix(b, p)}); }},
    {"a prefix over no event is STOP", "Hoare 1985",
        [](P p, P, P) { return set_prefix({}, p); }, [](P, P, P) { return stop(); }},

    {"sliding from STOP is a silent step", "Roscoe 1997",
        [](P p, P, P) { return sliding(stop(), p); }, [](P p, P, P) { return later(p); }},
    {"sliding offers what an open choice with the silent step does", "Roscoe 1997",
        [](P p, P q, P) { return sliding(prefix(a, p), q); },
        [](P p, P q, P) { return sliding(external({prefix(a, p), stop()}), q); }},

    {"sequential composition is associative", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P r) { return sequence(sequence(p, q), r); },
        [](P p, P q, P r) { return sequence(p, sequence(q, r)); }},
    {"SKIP before a process is a silent step", "Hoare 1985, Roscoe 1997",
        [](P p, P, P) { return sequence(skip(), p); }, [](P p, P, P) { return later(p); }},
    {"STOP is a left zero of sequential composition", "Hoare 1985",
        [](P p, P, P) { return sequence(stop(), p); }, [](P, P, P) { return stop(); }},
    {"a prefix passes through sequential composition", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return sequence(prefix(a, p), q); },
        [](P p, P q, P) { return prefix(a, sequence(p, q)); }},
    {"sequential composition distributes over internal choice on its left", "Roscoe 1997",
        [](P p, P q, P r) { return sequence(internal({p, q}), r); },
        [](P p, P q, P r) { return internal({sequence(p, r), sequence(q, r)}); }},

    {"STOP interrupts nothing", "Hoare 1985",
        [](P p, P, P) { return interrupt(p, stop()); }, [](P p, P, P) { return p; }},
    {"STOP is interrupted by all", "Hoare 1985",
        [](P p, P, P) { return interrupt(stop(), p); }, [](P p, P, P) { return p; }},
    {"interrupt is associative", "Hoare 1985",
        [](P p, P q, P r) { return interrupt(interrupt(p, q), r); },
        [](P p, P q, P r) { return interrupt(p, interrupt(q, r)); }},
    {"SKIP interrupted is a choice with SKIP", "Rules",
        [](P p, P, P) { return interrupt(skip(), p); },
        [](P p, P, P) { return external({skip(), p}); }},

    {"SKIP is the unit of interleaving", "Hoare 1985, Roscoe 1997",
        [](P p, P, P) { return interleave({p, skip()}); }, [](P p, P, P) { return p; }},
    {"interleaving is commutative", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return interleave({p, q}); },
        [](P p, P q, P) { return interleave({q, p}); }},
    {"interleaving is associative", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P r) { return interleave({interleave({p, q}), r}); },
        [](P p, P q, P r) { return interleave({p, interleave({q, r})}); }},
    {"nested interleavings are one", "Rules",
        [](P p, P q, P r) { return interleave({interleave({p, q}), r}); },
        [](P p, P q, P r) { return interleave({p, q, r}); }},
    {"interleaved prefixes expand", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return interleave({prefix(a, p), prefix(b, q)}); },
        [](P p, P q, P) { return external({prefix(a, interleave({p, prefix(b, q)})),
                                           prefix(b, interleave({prefix(a, p), q}))}); }},

    {"runs interleave to a run", "Rules",
        [](P, P, P) { return interleave({run({a}), run({a, b})}); },
        [](P, P, P) { return run({a, b}); }},
    {"a run over no event is STOP", "Hoare 1985",
        [](P, P, P) { return run({}); }, [](P, P, P) { return stop(); }},
    {"external choice with the same run is idempotent", "Rules",
        [](P, P, P) { return external({run({a, b}), run({a})}); },
        [](P, P, P) { return external({prefix(b, run({a, b})), prefix(a, run({a, b})),
                                       prefix(a, run({a}))}); }},
    {"CHAOS unfolds", "Roscoe 1997",
        [](P, P, P) { return chaos({a, b}); },
        [](P, P, P) { return internal({stop(), set_prefix({a, b}, chaos({a, b}))}); }},
    {"CHAOS over no event is a silent step to STOP", "Rules",
        [](P, P, P) { return chaos({}); }, [](P, P, P) { return later(stop()); }},

    {"generalised parallel is commutative", "Roscoe 1997",
        [](P p, P q, P) { return parallel({a}, {p, q}); },
        [](P p, P q, P) { return parallel({a}, {q, p}); }},
    {"generalised parallel over one set is associative", "Roscoe 1997",
        [](P p, P q, P r) { return parallel({a}, {parallel({a}, {p, q}), r}); },
        [](P p, P q, P r) { return parallel({a}, {p, parallel({a}, {q, r})}); }},
    {"nested generalised parallels over one set are one", "Rules",
        [](P p, P q, P r) { return parallel({a}, {parallel({a}, {p, q}), r}); },
        [](P p, P q, P r) { return parallel({a}, {p, q, r}); }},
    {"generalised parallel over no event is interleaving", "Roscoe 1997",
        [](P p, P q, P) { return parallel({}, {p, q}); },
        [](P p, P q, P) { return interleave({p, q}); }},
    {"one set for all is generalised parallel", "Roscoe 1997",
        [](P p, P q, P) { return alphabetised({{a, b, c}, {a, b, c}}, {p, q}); },
        [](P p, P q, P) { return parallel({a, b, c}, {p, q}); }},
    {"alphabetised parallel is commutative", "Roscoe 1997",
        [](P p, P q, P) { return alphabetised({{a, b}, {b, c}}, {p, q}); },
        [](P p, P q, P) { return alphabetised({{b, c}, {a, b}}, {q, p}); }},
    {"alphabetised parallel is associative", "Roscoe 1997",
        [](P p, P q, P r) {
            return alphabetised({{a, b, c}, {c}}, {alphabetised({{a, b}, {b, c}}, {p, q}), r}); },
        [](P p, P q, P r) { return alphabetised({{a, b}, {b, c}, {c}}, {p, q, r}); }},
    {"linked parallel is symmetric", "Roscoe 2010",
        [](P p, P q, P) { return linked({{a, b}, {c, c}}, p, q); },
        [](P p, P q, P) { return linked({{b, a}, {c, c}}, q, p); }},
    {"linked parallel over no link is interleaving", "Rules",
        [](P p, P q, P) { return linked({}, p, q); },
        [](P p, P q, P) { return interleave({p, q}); }},

    {"hiding twice is hiding the union", "Hoare 1985, Roscoe 1997",
        [](P p, P, P) { return hide(hide(p, {a}), {b}); },
        [](P p, P, P) { return hide(p, {a, b}); }},
    {"hiding nothing changes nothing", "Roscoe 1997",
        [](P p, P, P) { return hide(p, {}); }, [](P p, P, P) { return p; }},
    {"hiding distributes over internal choice", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return hide(internal({p, q}), {a}); },
        [](P p, P q, P) { return internal({hide(p, {a}), hide(q, {a})}); }},
    {"hiding passes through parallel where nothing shared is hidden", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return hide(parallel({b}, {p, q}), {a}); },
        [](P p, P q, P) { return parallel({b}, {hide(p, {a}), hide(q, {a})}); }},
    {"projection hides the rest", "Rules",
        [](P p, P, P) { return project(p, {a}); }, [](P p, P, P) { return hide(p, {b, c}); }},
    {"projection on all changes nothing", "Rules",
        [](P p, P, P) { return project(p, {a, b, c}); }, [](P p, P, P) { return p; }},

    {"renaming by nothing changes nothing", "Roscoe 1997",
        [](P p, P, P) { return rename(p, {}); }, [](P p, P, P) { return p; }},
    {"renamings compose", "Roscoe 1997",
        [](P p, P, P) { return rename(rename(p, {{a, b}, {b, b}, {c, c}}), {{b, c}, {c, a}}); },
        [](P p, P, P) { return rename(p, {{a, c}, {b, c}, {c, a}}); }},
    {"renaming distributes over external choice", "Hoare 1985, Roscoe 1997",
        [](P p, P q, P) { return rename(external({p, q}), {{a, b}, {a, c}}); },
        [](P p, P q, P) { return external({rename(p, {{a, b}, {a, c}}),
                                           rename(q, {{a, b}, {a, c}})}); }},

    {"an exception over no event changes nothing", "Roscoe 2010",
        [](P p, P q, P) { return exception(p, {}, q); }, [](P p, P, P) { return p; }},
    {"STOP throws nothing", "Roscoe 2010",
        [](P, P q, P) { return exception(stop(), {a}, q); }, [](P, P, P) { return stop(); }},
    {"a prefix that throws", "Roscoe 2010",
        [](P p, P q, P) { return exception(prefix(a, p), {a}, q); },
        [](P, P q, P) { return prefix(a, q); }},

    {"synchronising choice is commutative", "Roscoe 2010",
        [](P p, P q, P) { return sync_choice({a}, {p, q}); },
        [](P p, P q, P) { return sync_choice({a}, {q, p}); }},
    {"synchronising choice over no event is external choice", "Roscoe 2010",
        [](P p, P q, P) { return sync_choice({}, {p, q}); },
        [](P p, P q, P) { return external({p, q}); }},
    {"synchronising interrupt over no event is interrupt", "Roscoe 2010",
        [](P p, P q, P) { return sync_interrupt(p, {}, q); },
        [](P p, P q, P) { return interrupt(p, q); }},
};
// clang-format on

/// A system too large for a test is left out.
std::optional<StateSpace::LabelledTransitionSystem> explored(ProcessPointer const& term) {
    NamedProcessSource const source;
    StateSpace::ExplorationOptions options;
    options.max_states = 2000;
    StateSpace::Exploration exploration = StateSpace::explore(term, source, options);
    if (exploration.outcome != StateSpace::Outcome::complete) {
        return std::nullopt;
    }
    return std::move(exploration.lts);
}

class Laws : public testing::TestWithParam<Law> {};

TEST_P(Laws, hold_for_random_processes) {
    Law const& law = GetParam();
    constexpr std::uint64_t rounds = 60;
    std::uint64_t compared = 0;
    Session session;
    for (char const* const name : {"a", "b", "c"}) {
        session.declare_event(name);
    }
    for (std::uint64_t seed = 1; seed <= rounds; ++seed) {
        std::mt19937_64 random(seed);
        NamedProcessSource source;
        ProcessPointer terms[3];
        for (ProcessPointer& term : terms) {
            term = Oracle::library_term(*Oracle::random_term(random, 4), source);
        }
        ProcessPointer const left = law.left(terms[0], terms[1], terms[2]);
        ProcessPointer const right = law.right(terms[0], terms[1], terms[2]);
        auto const left_lts = explored(left);
        auto const right_lts = explored(right);
        if (left_lts && right_lts) {
            ++compared;
            EXPECT_TRUE(StateSpace::are_bisimilar(*left_lts, *right_lts))
                << law.name << " (" << law.source << "), seed " << seed << "\n"
                << ProcessCompiler::Testing::text_of(session, *left) << "\n"
                << ProcessCompiler::Testing::text_of(session, *right);
        }
    }
    EXPECT_GT(compared, rounds / 2) << "too few were small enough";
}

INSTANTIATE_TEST_SUITE_P(Csp, Laws, testing::ValuesIn(laws));

} // namespace
} // namespace Calder
