#include "process_compiler/kinds.h"
#include "tests/csp/terms.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {
namespace {

using Steps = std::vector<std::pair<unsigned, ProcessPointer>>;

/// All transitions, or those up to and including number `refused`, which the visitor answers with
/// false. Checks what the visit itself answers.
Steps steps(Process const& term, std::size_t refused = SIZE_MAX) {
    Steps seen;
    bool const answer =
        term.visit_transitions(source, [&](unsigned event, ProcessPointer const& successor) {
            seen.emplace_back(event, successor);
            return seen.size() <= refused;
        });
    EXPECT_EQ(answer, seen.size() <= refused);
    return seen;
}

std::string steps_text(Process const& term) {
    std::string lines;
    for (auto const& [event, successor] : steps(term)) {
        lines += name_of(event) + " to " + text(*successor) + "\n";
    }
    return lines;
}

ProcessPointer const skips = external({prefix(tick, P), prefix(tick, Q)}); // in two ways
ProcessPointer const busy =
    external({prefix(c, P), prefix(a, P), prefix(tau, P), prefix(tick, P), prefix(a, Q)});
ProcessPointer const tick_between = external({prefix(a, P), prefix(tick, P), prefix(b, P)});

struct Row {
    char const* rule;
    ProcessPointer term;
    char const* steps;
};

void expect_steps(std::vector<Row> const& rows) {
    for (Row const& row : rows) {
        EXPECT_EQ(steps_text(*row.term), row.steps) << row.rule;
    }
}

// The rest is compared with the firing rules in tests/oracle, step by step.
TEST(Transitions, that_random_models_show_seldom_or_never) {
    expect_steps({
        {"a set, ascending", set_prefix({c, a, tick}, P), "tick to P\na to P\nc to P\n"},
        {"an empty set", set_prefix({}, P), ""},
        {"CHAOS over nothing", chaos({}), "tau to STOP\ntau to STOP\n"},
        {"tick of the set needs all", sync_choice({tick}, {SKIP, SKIP}), "tick to STOP\n"},
        {"tau of the set waits for all", sync_choice({tau}, {prefix(tau, P), prefix(tau, Q)}),
         "tau to P [+ {tau} +] Q\n"},
        {"of nothing", sync_choice({a}, {}), ""},
        {"tick of the second is its own", interrupt(STOP, prefix(tick, Q)), "tick to Q\n"},
        {"tick ends it even as an exception", exception({tick}, SKIP, Q), "tick to STOP\n"},
        {"tau may be an exception", exception({tau}, prefix(tau, P), Q), "tau to Q\n"},
        {"all terminate together", interleave({skips, SKIP}), "tick to STOP\n"},
        {"of nothing terminates", SKIP, "tick to STOP\n"},
        {"termination in each way", parallel({}, {skips, SKIP}), "tick to STOP\ntick to STOP\n"},
        {"of nothing", parallel({a}, {}), ""},
        {"tau in an alphabet stays its argument's own",
         alphabetised({{tau}, {tau, a}}, {prefix(tau, P), prefix(tau, Q)}),
         "tau to || (a, p) : {({tau, tick}, P)({tau, tick, a}, tau -> Q)} @ [a] p\n"
         "tau to || (a, p) : {({tau, tick}, tau -> P)({tau, tick, a}, Q)} @ [a] p\n"},
        {"termination needs all", alphabetised({{a}, {b}}, {SKIP, skips}),
         "tick to STOP\ntick to STOP\n"},
        {"of nothing", alphabetised({}, {}), ""},
        {"a link from tick terminates", linked({{tick, b}}, SKIP, prefix(b, Q)), "tick to STOP\n"},
        {"a link to tick does not", linked({{a, tick}}, prefix(a, P), SKIP),
         "tau to P [a <-> tick, tick <-> tick] STOP\n"},
        {"a link from tick keeps the other's event to itself",
         linked({{tick, b}}, STOP, external({prefix(b, Q), prefix(a, Q)})),
         "a to STOP [tick <-> b, tick <-> tick] Q\n"},
        {"all but the set and tick is silent", project(tick_between, {a}),
         "a to P |\\ {a}\ntick to P |\\ {a}\ntau to P |\\ {a}\n"},
        {"tau stays tau though it is kept", project(prefix(tau, P), {tau}), "tau to P |\\ {tau}\n"},
        {"several targets come in reverse, what is not mentioned stays, tick goes to STOP",
         rename(tick_between, {{a, b}, {a, a}}),
         "a to P[[a <- a, a <- b]]\nb to P[[a <- a, a <- b]]\ntick to STOP\n"
         "b to P[[a <- a, a <- b]]\n"},
        {"tick is not renamed", rename(prefix(tick, P), {{tick, a}}), "tick to STOP\n"},
        {"a duplicate counts", rename(prefix(a, P), {{a, b}, {a, b}}),
         "b to P[[a <- b, a <- b]]\nb to P[[a <- b, a <- b]]\n"},
        {"tau may be renamed", rename(prefix(tau, P), {{tau, a}}), "a to P[[tau <- a]]\n"},
    });
}

/// Argument `index` of the successor by transition `number`.
ProcessPointer part(ProcessPointer const& term, std::size_t number, unsigned index) {
    return steps(*term)[number].second->argument(index);
}

TEST(Transitions, pass_arguments_on_themselves) {
    ProcessPointer const next = prefix(b, P);
    ProcessPointer const loop = run({a});
    ProcessPointer const demon = chaos({a});
    struct {
        char const* what;
        ProcessPointer successor;
        ProcessPointer same;
    } const rows[] = {
        {"prefix", steps(*prefix(a, next))[0].second, next},
        {"event-set prefix", steps(*set_prefix({a}, next))[0].second, next},
        {"external choice", steps(*external({prefix(a, next)}))[0].second, next},
        {"its other arguments", part(external({next, prefix(tau, Q)}), 1, 0), next},
        {"internal choice", steps(*internal({next}))[0].second, next},
        {"timeout", steps(*sliding(STOP, next))[0].second, next},
        {"sliding choice", steps(*sliding(prefix(a, next), Q))[1].second, next},
        {"sequential composition", steps(*sequence(SKIP, next))[0].second, next},
        {"interrupt", steps(*interrupt(STOP, prefix(b, next)))[0].second, next},
        {"interleave", part(interleave({next, prefix(a, Q)}), 1, 0), next},
        {"generalised parallel", part(parallel({}, {prefix(a, Q), next}), 0, 1), next},
        {"alphabetised parallel", part(alphabetised({{a}, {b}}, {prefix(a, Q), next}), 0, 1), next},
        {"linked parallel", part(linked({}, prefix(a, Q), next), 0, 1), next},
        {"exception", steps(*exception({a}, prefix(a, P), next))[0].second, next},
        {"RUN", steps(*loop)[0].second, loop},
        {"CHAOS", steps(*steps(*demon)[1].second)[0].second, demon},
        {"one STOP of CHAOS", steps(*demon)[0].second, steps(*chaos({b}))[0].second},
        {"one STOP of interleave", steps(*SKIP)[0].second, steps(*interleave({SKIP}))[0].second},
        {"one STOP of renaming", steps(*rename(SKIP, {}))[0].second,
         steps(*rename(SKIP, {{a, b}}))[0].second},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.successor, row.same) << row.what;
    }
}

TEST(Transitions, share_one_operator_among_fresh_terms) {
    auto const operator_of = [](ProcessPointer const& applied) {
        return &static_cast<OperatorProcess const&>(*applied).applied_operator();
    };
    ProcessPointer const term = rename(prefix(a, P), {{a, b}, {a, c}});
    Steps const seen = steps(*term);
    EXPECT_NE(seen[0].second, seen[1].second);
    EXPECT_EQ(operator_of(seen[0].second), operator_of(term));
    EXPECT_EQ(operator_of(seen[1].second), operator_of(term));
}

/// Every construct over arguments that are busy, and some with joint steps or several of one event.
std::vector<ProcessPointer> busy_terms() {
    auto const both = alphabetised({{a, b}, {a, b}}, {busy, busy});
    std::vector<ProcessPointer> terms{set_prefix({a, b, c}, P), run({a, b}), both};
    terms.push_back(parallel({a, b, c}, {busy, busy}));
    terms.push_back(linked({{a, c}, {c, a}}, busy, busy));
    terms.push_back(rename(busy, {{a, b}, {a, c}}));
    for (Construct const& construct : constructs) {
        terms.push_back(construct.of(busy, busy));
    }
    return terms;
}

TEST(Transitions, stop_where_their_visitor_does) {
    for (ProcessPointer const& term : busy_terms()) {
        Steps const all = steps(*term);
        // Nobody listens to what is answered to a tick of several arguments together, and of
        // synchronising interrupt more is told below.
        bool const joins_ticks =
            term->recursion_type() == RecursionType::keeps_running && term->argument_count() == 2;
        bool const is_interrupt = text(*term).find("+\\") != std::string::npos;
        for (std::size_t refused = 0; refused < all.size() && !is_interrupt; ++refused) {
            if (all[refused].first != tick || !joins_ticks) {
                EXPECT_EQ(steps(*term, refused).size(), refused + 1) << text(*term);
            }
        }
        if (!all.empty()) {
            EXPECT_THROW(term->visit_transitions(source, {}), std::bad_function_call)
                << text(*term);
        }
    }
}

TEST(Transitions, a_synchronising_interrupt_goes_on_after_a_refusal_of_its_second_argument) {
    ProcessPointer const term =
        sync_interrupt({a}, external({prefix(a, P), prefix(c, P)}),
                       external({prefix(a, Q), prefix(b, Q), prefix(tau, Q)}));
    std::vector<unsigned> seen;
    bool const answer = term->visit_transitions(source, [&](unsigned event, Term) {
        seen.push_back(event);
        return event != b;
    });
    EXPECT_EQ(seen, (std::vector<unsigned>{c, b, a})) << "not tau: that argument was told to stop";
    EXPECT_TRUE(answer);
    EXPECT_EQ(steps(*term, 0).size(), 1U) << "a refusal of the first argument ends it";
}

TEST(Transitions, of_a_run_keep_it_alive_though_its_visitor_lets_go) {
    ProcessPointer only = run({a, b});
    std::string seen;
    only->visit_transitions(source, [&](unsigned, ProcessPointer const& successor) {
        only.reset();
        EXPECT_GT(successor->reference_count(), 0U);
        seen += text(*successor) + " ";
        return true;
    });
    EXPECT_EQ(seen, "RUN({a, b}) RUN({a, b}) ");
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
