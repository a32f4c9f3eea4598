#include "core/hash_combine.h"
#include "csp/alphabetised_parallel_operator.h"
#include "csp/generalised_parallel_operator.h"
#include "csp/linked_parallel_operator.h"
#include "tests/csp/operator_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

/// Generalised, alphabetised and linked parallel.
class ParallelOperatorsTest : public OperatorTest {
  protected:
    static OperatorPointer generalised(BitSet const& events) {
        return new GeneralisedParallelOperator(events);
    }
    static OperatorPointer alphabetised(std::vector<BitSet> const& alphabets) {
        return new AlphabetisedParallelOperator(alphabets);
    }
    static OperatorPointer linked(LinkedParallelOperator::Links const& links) {
        return new LinkedParallelOperator(links);
    }

    ProcessPointer const tick_twice = choice({prefix(tick, p), prefix(tick, q)});
};

TEST_F(ParallelOperatorsTest, transitions) {
    struct {
        char const* rule;
        ProcessPointer term;
        char const* steps;
    } const rows[] = {
        {"independent steps come first, argument by argument",
         apply(generalised({b}),
               {choice({prefix(b, p), prefix(c, p)}), choice({prefix(tau, q), prefix(b, q)})}),
         "c to P [| {tick, b} |] tau -> Q [] b -> Q\n"
         "tau to b -> P [] c -> P [| {tick, b} |] Q [] b -> Q\n"
         "b to P [| {tick, b} |] Q\n"},
        {"who cannot blocks all", apply(generalised({a}), {prefix(a, p), prefix(b, q)}),
         "b to a -> P [| {tick, a} |] Q\n"},
        {"termination needs all", apply(generalised({}), {skip, prefix(a, p)}),
         "a to (SKIP) [| {tick} |] P\n"},
        {"termination of each way", apply(generalised({}), {tick_twice, skip}),
         "tick to STOP\ntick to STOP\n"},
        {"no arguments", apply(generalised({a}), {}), ""},

        {"owners move together, the others stay",
         apply(alphabetised({{a}, {b}, {a}}), {prefix(a, p), prefix(b, p), prefix(a, q)}),
         "a to || (a, p) : {({tick, a}, P)({tick, b}, b -> P)({tick, a}, Q)} @ [a] p\n"
         "b to || (a, p) : {({tick, a}, a -> P)({tick, b}, P)({tick, a}, a -> Q)} @ [a] p\n"},
        {"outside its alphabet an argument does nothing",
         apply(alphabetised({{a}, {}}), {prefix(b, p), prefix(a, q)}), ""},
        {"an owner that cannot keeps the event from all",
         apply(alphabetised({{a}, {a}}), {prefix(a, p), stop}), ""},
        {"silent steps come first", apply(alphabetised({{a}, {}}), {prefix(a, p), prefix(tau, q)}),
         "tau to || (a, p) : {({tick, a}, a -> P)({tick}, Q)} @ [a] p\n"
         "a to || (a, p) : {({tick, a}, P)({tick}, tau -> Q)} @ [a] p\n"},
        {"termination needs all", apply(alphabetised({{a}, {b}}), {skip, tick_twice}),
         "tick to STOP\ntick to STOP\n"},
        {"no arguments", apply(alphabetised({}), {}), ""},

        {"a link is silent, with every pairing",
         apply(linked({{a, b}}), {prefix(a, p), choice({prefix(b, p), prefix(b, q)})}),
         "tau to P [a <-> b, tick <-> tick] P\ntau to P [a <-> b, tick <-> tick] Q\n"},
        {"own steps come first, then the links in their order",
         apply(linked({{b, a}, {a, a}}), {choice({prefix(a, p), prefix(b, q), prefix(c, p)}),
                                          choice({prefix(a, q), prefix(b, p)})}),
         "c to P [b <-> a, a <-> a, tick <-> tick] a -> Q [] b -> P\n"
         "b to a -> P [] b -> Q [] c -> P [b <-> a, a <-> a, tick <-> tick] P\n"
         "tau to Q [b <-> a, a <-> a, tick <-> tick] Q\n"
         "tau to P [b <-> a, a <-> a, tick <-> tick] Q\n"},
        {"termination of both", apply(linked({}), {skip, tick_twice}),
         "tick to STOP\ntick to STOP\n"},
        {"termination of one", apply(linked({}), {skip, stop}), ""},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(steps_text(*row.term), row.steps) << row.rule;
    }
}

TEST_F(ParallelOperatorsTest, share_the_arguments_that_stay) {
    ProcessPointer const staying = prefix(b, p);
    Steps const seen = steps(*apply(alphabetised({{a}, {b}}), {prefix(a, q), staying}));
    EXPECT_EQ(seen[0].second->argument(0), q);
    EXPECT_EQ(seen[0].second->argument(1), staying);
    EXPECT_EQ(steps(*apply(generalised({}), {prefix(a, q), staying}))[0].second->argument(1),
              staying);
}

TEST_F(ParallelOperatorsTest, stop_where_their_visitor_does) {
    ProcessPointer const busy =
        choice({prefix(tau, p), prefix(a, p), prefix(b, q), prefix(tau, q)});
    for (ProcessPointer const& term : {apply(generalised({a, b}), {busy, busy}),
                                       apply(alphabetised({{a, b}, {b}}), {busy, busy}),
                                       apply(linked({{a, b}, {b, a}}), {busy, busy})}) {
        std::size_t const all = steps(*term).size();
        ASSERT_EQ(all, 6U) << text(*term);
        for (std::size_t refused = 0; refused < all; ++refused) {
            EXPECT_EQ(steps(*term, refused).size(), refused + 1) << text(*term);
        }
        EXPECT_THROW(term->visit_transitions(source, {}), std::bad_function_call);
    }
}

TEST_F(ParallelOperatorsTest, formats) {
    struct {
        OperatorPointer op;
        std::vector<BitSet> alphabets;
        char const* formats;
    } const rows[] = {
        {generalised({a}),
         {{tick, a, b}, {c}},
         "0 runs 0 1: tick(0:tick 1:tick)>0 a(0:a 1:a)>0 tick(0:tick 1:tick)>0 b(0:b)>0 "
         "c(1:c)>0\n"},
        {generalised({a}), {}, "0 runs: tick()>0 a()>0 tick()>0\n"},
        {alphabetised({{a}, {a, b}}),
         {{tick, a}, {tau, tick}},
         "0 runs 0 1: tick(0:tick 1:tick)>0 a(0:a 1:a)>0 b(1:b)>0 tick(0:tick 1:tick)>0 "
         "tau(1:tau)>0\n"},
        {alphabetised({{a}, {b}}),
         {{tick}, {b}},
         "0 runs 0 1: tick(0:tick 1:tick)>0 a(0:a)>0 b(1:b)>0\n"},
        {linked({{a, b}, {b, c}}),
         {{tau, a, c}, {tick, a, b}},
         "0 runs 0 1: tau(0:a 1:b)>0 tau(0:tau)>0 c(0:c)>0 a(1:a)>0\n"},
        {linked({}), {{tick}, {tick}}, "0 runs 0 1: tick(0:tick 1:tick)>0\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formats_text(*apply(row.op, {p, q}), row.alphabets), row.formats);
    }
}

TEST_F(ParallelOperatorsTest, identity) {
    struct {
        OperatorPointer left;
        OperatorPointer right;
        bool equal;
    } const rows[] = {
        {generalised({a}), generalised({tick, a}), true},
        {generalised({a}), generalised({b}), false},
        {alphabetised({{a}, {b}}), alphabetised({{a, tick}, {b}}), true},
        {alphabetised({{a}, {b}}), alphabetised({{b}, {a}}), false},
        {alphabetised({{a}}), alphabetised({{a}, {a}}), false},
        {linked({{a, b}}), linked({{a, b}}), true},
        {linked({{a, b}, {b, c}}), linked({{b, c}, {a, b}}), false},
        {linked({{a, b}}), linked({{b, a}}), false},
        {linked({}), generalised({}), false},
        {alphabetised({}), linked({}), false},
    };
    for (auto const& row : rows) {
        expect_equality_of(*row.left, *row.right, row.equal);
    }
    EXPECT_EQ(generalised({})->hash_code(), 0x41bb87b258c2de50U);
    EXPECT_EQ(alphabetised({{a}})->hash_code(),
              hash_combine(0x36d, hash_combine(hash_combine(0xc1, 1), (1U << a) | (1U << tick))));
    EXPECT_EQ(linked({})->hash_code(),
              hash_combine(0xa75, hash_combine(hash_combine(0xc1, 1), hash_combine(2, 2))));
}

TEST_F(ParallelOperatorsTest, printing) {
    struct {
        ProcessPointer term;
        char const* full;
        char const* abbreviated;
    } const rows[] = {
        {apply(generalised({a}), {p, choice({p, q}), p}),
         "P [| {tick, a} |] P [] Q [| {tick, a} |] P", "P [|…|] P [] Q [|…|] P"},
        {apply(generalised({}), {apply(generalised({}), {p, q}), p}),
         "(P [| {tick} |] Q) [| {tick} |] P", "(P [|…|] Q) [|…|] P"},
        {apply(generalised({}), {}), "SKIP", "SKIP"},
        {apply(alphabetised({{a}, {}}), {p, choice({p, q})}),
         "|| (a, p) : {({tick, a}, P)({tick}, P [] Q)} @ [a] p", "P […||…] P [] Q"},
        {apply(linked({{a, b}}), {p, apply(linked({}), {p, q})}),
         "P [a <-> b, tick <-> tick] (P [tick <-> tick] Q)", "P […<->…] (P […<->…] Q)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
        EXPECT_EQ(text(*row.term, true), row.abbreviated);
    }
    struct {
        OperatorPointer op;
        char const* text;
        char const* description;
    } const words[] = {
        {generalised({a}), " [| {tick, a} |] ",
         "Generalised Parallel synchronising:\n    {tick, a}"},
        {alphabetised({{a}, {b}}), " […||…] ",
         "Alphabetised Parallel with process alphabets:\n    0: {tick, a}\n    1: {tick, b}\n"},
        {linked({{a, b}}), " [a <-> b, tick <-> tick] ",
         "Link Parallel synchronising:\n    a <-> b\n    tick <-> tick\n"},
    };
    for (auto const& row : words) {
        EXPECT_EQ(text_of_operator(*row.op), row.text);
        EXPECT_EQ(description_of_operator(*row.op), row.description);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
