#include "csp/exception_operator.h"
#include "csp/synchronising_external_choice_operator.h"
#include "csp/synchronising_interrupt_operator.h"
#include "tests/csp/operator_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

/// Exception, synchronising external choice and synchronising interrupt: the operators over a set
/// that an event can end.
class SynchronisingOperatorsTest : public OperatorTest {
  protected:
    static OperatorPointer exception(BitSet const& events) { return new ExceptionOperator(events); }
    static OperatorPointer sync_choice(BitSet const& events) {
        return new SynchronisingExternalChoiceOperator(events);
    }
    static OperatorPointer sync_interrupt(BitSet const& events) {
        return new SynchronisingInterruptOperator(events);
    }

    ProcessPointer const busy =
        choice({prefix(a, p), prefix(tau, p), prefix(b, p), prefix(tick, p)});
};

TEST_F(SynchronisingOperatorsTest, transitions) {
    struct {
        char const* rule;
        ProcessPointer term;
        char const* steps;
    } const rows[] = {
        {"an exception goes to the handler, all else stays, tick ends",
         apply(exception({a}), {busy, q}),
         "a to Q\n"
         "tau to a -> P [] P [] b -> P [] tick -> P [| {a} |> Q\n"
         "b to P [| {a} |> Q\n"
         "tick to STOP\n"},
        {"tick ends it even as an exception", apply(exception({tick}), {skip, q}),
         "tick to STOP\n"},

        {"a visible event decides, a silent one does not, tick ends",
         apply(sync_choice({a}), {busy, prefix(b, q)}),
         "tau to (a -> P [] P [] b -> P [] tick -> P) [+ {a} +] b -> Q\n"
         "b to P\ntick to STOP\nb to Q\n"},
        {"what all must do comes last and leaves it open",
         apply(sync_choice({a}), {prefix(a, p), choice({prefix(a, q), prefix(b, q)})}),
         "b to Q\na to P [+ {a} +] Q\n"},
        {"tick of the set needs all", apply(sync_choice({tick}), {skip, skip}), "tick to STOP\n"},
        {"tick of the set by one alone", apply(sync_choice({tick}), {skip, stop}), ""},
        {"no arguments", apply(sync_choice({a}), {}), ""},

        {"the first goes on, the second takes over",
         apply(sync_interrupt({c}), {busy, choice({prefix(a, q), prefix(tau, q)})}),
         "a to P /+ {c} +\\ (a -> Q [] tau -> Q)\n"
         "tau to (a -> P [] P [] b -> P [] tick -> P) /+ {c} +\\ (a -> Q [] tau -> Q)\n"
         "b to P /+ {c} +\\ (a -> Q [] tau -> Q)\n"
         "tick to STOP\n"
         "a to Q\n"
         "tau to (a -> P [] tau -> P [] b -> P [] tick -> P) /+ {c} +\\ (a -> Q [] Q)\n"},
        {"a joint event moves both and leaves it in place",
         apply(sync_interrupt({a}), {prefix(a, p), choice({prefix(a, q), skip})}),
         "tick to STOP\na to P /+ {a} +\\ Q\n"},
        {"a joint event of one alone", apply(sync_interrupt({a}), {prefix(a, p), stop}), ""},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(steps_text(*row.term), row.steps) << row.rule;
    }
    EXPECT_EQ(steps(*apply(exception({a}), {busy, q}))[0].second, q);
}

TEST_F(SynchronisingOperatorsTest, stop_where_their_visitor_does) {
    for (ProcessPointer const& term :
         {apply(exception({a}), {busy, q}), apply(sync_choice({a}), {busy, prefix(a, q)}),
          apply(sync_interrupt({c}), {busy, stop})}) {
        for (std::size_t refused = 0; refused < 3; ++refused) {
            EXPECT_EQ(steps(*term, refused).size(), refused + 1) << text(*term);
        }
        EXPECT_THROW(term->visit_transitions(source, {}), std::bad_function_call);
    }
}

TEST_F(SynchronisingOperatorsTest, an_interrupt_goes_on_after_a_refusal_of_its_second_argument) {
    ProcessPointer const term =
        apply(sync_interrupt({a}), {choice({prefix(a, p), prefix(c, p)}),
                                    choice({prefix(a, q), prefix(b, q), prefix(tau, q)})});
    std::vector<unsigned> seen;
    bool const answer = term->visit_transitions(source, [&](unsigned event, ProcessPointer const&) {
        seen.push_back(event);
        return event != b;
    });
    EXPECT_EQ(seen, (std::vector<unsigned>{c, b, a})) << "not tau: that argument was told to stop";
    EXPECT_TRUE(answer);
    EXPECT_EQ(steps(*term, 0).size(), 1U) << "a refusal of the first argument ends it";
}

TEST_F(SynchronisingOperatorsTest, high_level_transitions) {
    EXPECT_EQ(high_level_text(*apply(exception({a}), {p, q}), {{tau, tick, a}, {}}),
              "[tau] tau to P [| {a} |> Q, moved\n"
              "[tick] tick to P [| {a} |> Q, moved\n"
              "[a] a to Q\n");
    EXPECT_EQ(high_level_text(*apply(sync_choice({a}), {p, q}), {{a}, {a}}), "");
}

TEST_F(SynchronisingOperatorsTest, formats) {
    struct {
        OperatorPointer op;
        std::vector<BitSet> alphabets;
        char const* formats;
    } const rows[] = {
        {exception({a, tick}),
         {{tick, a, b}, {c}},
         "0 runs 0: tick(0:tick)>1 a(0:a)>1 b(0:b)>0\n1 runs 1: c(1:c)>1\n"},
        {sync_choice({a}),
         {{tau, a, b}, {tick}},
         "0 runs 0 1: a(0:a 1:a)>0 tau(0:tau)>0 b(0:b)>1 tick(1:tick)>2\n"
         "1 runs 0: tau(0:tau)>1 a(0:a)>1 b(0:b)>1\n"
         "2 runs 1: tick(1:tick)>2\n"},
        {sync_choice({a}), {}, "0 runs: a()>0\n"},
        {sync_interrupt({a}),
         {{a, tick}, {a, b}},
         "0 runs 0 1: tick(0:tick 1:-)>2 a(0:a 1:a)>0 b(0:- 1:b)>1\n"
         "1 runs 1: a(1:a)>1 b(1:b)>1\n"
         "2 runs:\n"},
        {sync_interrupt({}),
         {{a}, {tau}},
         "0 runs 0 1: a(0:a 1:-)>0 tau(0:- 1:tau)>0\n1 runs 1: tau(1:tau)>1\n2 runs:\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formats_text(*apply(row.op, {p, q}), row.alphabets), row.formats);
    }
}

TEST_F(SynchronisingOperatorsTest, identity) {
    EventSet const given({new Event("a")});
    struct {
        OperatorPointer left;
        OperatorPointer right;
        bool equal;
        bool same_operator;
    } const rows[] = {
        {exception({a}), new ExceptionOperator(session, given), true, true},
        {exception({a}), exception({b}), false, true},
        {sync_choice({a}), sync_choice({a}), true, true},
        {sync_choice({a}), sync_choice({b}), false, false},
        {sync_interrupt({a}), sync_interrupt({a}), true, true},
        {sync_interrupt({a}), sync_interrupt({b}), false, false},
        {sync_interrupt({a}), sync_choice({a}), false, false},
        {exception({a}), sync_interrupt({a}), false, false},
    };
    for (auto const& row : rows) {
        expect_equality_of(*row.left, *row.right, row.equal);
        EXPECT_EQ(row.left->pretty_print_is_same_operator(*row.right), row.same_operator);
    }
    EXPECT_EQ(exception({})->hash_code(), 0x883c343423895bbaU);
    EXPECT_EQ(sync_choice({})->hash_code(), 0xf8c565d0b27f205eU);
    EXPECT_EQ(sync_interrupt({})->hash_code(), 0x9aedb00c753c143cU);
}

TEST_F(SynchronisingOperatorsTest, printing) {
    struct {
        ProcessPointer term;
        char const* full;
        char const* abbreviated;
    } const rows[] = {
        {apply(exception({a}), {apply(exception({}), {p, q}), prefix(a, p)}),
         "(P [| {} |> Q) [| {a} |> a -> P", "(P [|…|> Q) [|…|> a -> …"},
        {apply(sync_choice({a}), {p, apply(sync_choice({a}), {p, q}), q}),
         "P [+ {a} +] P [+ {a} +] Q [+ {a} +] Q", "P [+…+] P [+…+] Q [+…+] Q"},
        {apply(sync_choice({a}), {p, apply(sync_choice({}), {p, q})}), "P [+ {a} +] (P [+ {} +] Q)",
         "P [+…+] (P [+…+] Q)"},
        {apply(sync_choice({a}), {}), "STOP", "STOP"},
        {apply(sync_interrupt({a}), {apply(sync_interrupt({a}), {p, q}), p}),
         "P /+ {a} +\\ Q /+ {a} +\\ P", "P /+…+\\ Q /+…+\\ P"},
        {apply(sync_interrupt({a}), {p, apply(sync_interrupt({a}), {q, p})}),
         "P /+ {a} +\\ (Q /+ {a} +\\ P)", "P /+…+\\ (Q /+…+\\ P)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
        EXPECT_EQ(text(*row.term, true), row.abbreviated);
    }
    struct {
        OperatorPointer op;
        char const* description;
    } const words[] = {
        {exception({a}), "Exception with event set:\n    {a}"},
        {sync_choice({a}), "Synchronising External Choice synchronising on:\n    {a}"},
        {sync_interrupt({a}), "Synchronising Interrupt synchronising on:\n    {a}"},
    };
    for (auto const& row : words) {
        EXPECT_EQ(description_of_operator(*row.op), row.description);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
