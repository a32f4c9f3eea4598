#include "core/hash_combine.h"
#include "csp/hide_operator.h"
#include "csp/project_operator.h"
#include "csp/rename_operator.h"
#include "tests/csp/operator_test.h"

namespace Calder::ProcessCompiler::CSP {
namespace {

using Pairs = FixedArray<std::pair<unsigned, unsigned>>;

/// Hiding, projection and renaming: operators after their only operand.
class UnaryOperatorsTest : public OperatorTest {
  protected:
    static OperatorPointer hide(BitSet const& events) { return new HideOperator(events); }
    static OperatorPointer project(BitSet const& events) { return new ProjectOperator(events); }
    static OperatorPointer rename(Pairs const& pairs) { return new RenameOperator(pairs); }

    ProcessPointer const busy = choice({prefix(c, p), prefix(a, p), prefix(tick, p), prefix(a, q)});
};

TEST_F(UnaryOperatorsTest, transitions) {
    struct {
        char const* rule;
        ProcessPointer term;
        char const* steps;
    } const rows[] = {
        {"hidden events are silent, each in its place", apply(hide({a}), {busy}),
         "c to P \\ {a}\ntau to P \\ {a}\ntick to P \\ {a}\ntau to Q \\ {a}\n"},
        {"tick can be hidden", apply(hide({tick}), {prefix(tick, p)}), "tau to P \\ {tick}\n"},
        {"nothing hidden", apply(hide({}), {prefix(a, p)}), "a to P \\ {}\n"},
        {"all but the set and tick is silent", apply(project({a}), {busy}),
         "tau to P |\\ {a}\na to P |\\ {a}\ntick to P |\\ {a}\na to Q |\\ {a}\n"},
        {"tau stays tau though it is kept", apply(project({tau}), {prefix(tau, p)}),
         "tau to P |\\ {tau}\n"},
        {"several targets come in reverse, what is not mentioned stays, tick goes to STOP",
         apply(rename({{a, b}, {a, a}}), {busy}),
         "c to P[[a <- a, a <- b]]\n"
         "a to P[[a <- a, a <- b]]\nb to P[[a <- a, a <- b]]\ntick to STOP\n"
         "a to Q[[a <- a, a <- b]]\nb to Q[[a <- a, a <- b]]\n"},
        {"tick is not renamed", apply(rename({{tick, a}}), {prefix(tick, p)}), "tick to STOP\n"},
        {"a duplicate counts", apply(rename({{a, b}, {a, b}}), {prefix(a, p)}),
         "b to P[[a <- b, a <- b]]\nb to P[[a <- b, a <- b]]\n"},
        {"tau may be renamed", apply(rename({{tau, a}}), {prefix(tau, p)}), "a to P[[tau <- a]]\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(steps_text(*row.term), row.steps) << row.rule;
    }
}

TEST_F(UnaryOperatorsTest, share_one_operator_among_fresh_terms_and_one_stop) {
    ProcessPointer const term = apply(rename({{a, b}, {a, c}}), {choice({prefix(a, p), skip})});
    Steps const seen = steps(*term);
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_NE(seen[0].second, seen[1].second);
    auto const operator_of = [](ProcessPointer const& applied) {
        return &static_cast<OperatorProcess const&>(*applied).applied_operator();
    };
    EXPECT_EQ(operator_of(seen[0].second), operator_of(term));
    EXPECT_EQ(operator_of(seen[1].second), operator_of(term));
    EXPECT_EQ(seen[2].second, steps(*term)[2].second);
}

TEST_F(UnaryOperatorsTest, stop_where_their_visitor_does) {
    for (OperatorPointer const& op : {hide({a}), project({a}), rename({{a, b}, {a, c}})}) {
        ProcessPointer const term = apply(op, {busy});
        for (std::size_t refused = 0; refused < 4; ++refused) {
            EXPECT_EQ(steps(*term, refused).size(), refused + 1);
        }
        EXPECT_THROW(term->visit_transitions(source, {}), std::bad_function_call);
    }
}

TEST_F(UnaryOperatorsTest, formats) {
    struct {
        OperatorPointer op;
        BitSet alphabet;
        char const* formats;
    } const rows[] = {
        {hide({a}),
         {tau, tick, a, b},
         "0 runs 0: tau(0:tau)>0 tick(0:tick)>0 tau(0:a)>0 b(0:b)>0\n"},
        {hide({a}), {}, "0 runs 0:\n"},
        {project({a}),
         {tau, tick, a, b},
         "0 runs 0: tau(0:tau)>0 tick(0:tick)>0 a(0:a)>0 tau(0:b)>0\n"},
        {rename({{a, b}, {a, c}, {tick, a}}),
         {tick, a, b},
         "0 runs 0: a(0:tick)>0 c(0:a)>0 b(0:a)>0 b(0:b)>0\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(formats_text(*apply(row.op, {p}), {row.alphabet}), row.formats);
    }
}

TEST_F(UnaryOperatorsTest, identity) {
    EventSet const given({new Event("b"), new Event("a")});
    struct {
        OperatorPointer left;
        OperatorPointer right;
        bool equal;
        bool same_hash;
    } const rows[] = {
        {hide({a, b}), new HideOperator(session, given), true, true},
        {hide({a}), hide({b}), false, false},
        {hide({a}), project({a}), false, false},
        {project({a, b}), new ProjectOperator(session, given), true, true},
        {project({a}), project({a, b}), false, false},
        {rename({{a, b}, {b, c}}), rename({{a, b}, {b, c}}), true, true},
        {rename({{a, b}, {b, c}}), rename({{b, c}, {a, b}}), true, false},
        {rename({{a, b}}), rename({{a, b}, {a, b}}), false, false},
        {rename({{a, b}}), rename({{a, c}}), false, false},
        {rename({}), hide({}), false, false},
    };
    for (auto const& row : rows) {
        expect_equality_of(*row.left, *row.right, row.equal, row.same_hash);
    }
    EXPECT_EQ(hide({})->hash_code(), 0x20fbeb41c16ab054U);
    EXPECT_EQ(project({})->hash_code(), 0x8e1e9933707c8024U);
    EXPECT_EQ(rename({})->hash_code(), hash_combine(0xe27, hash_combine(0xc1, 0)));
    EXPECT_EQ(rename({{a, b}})->hash_code(),
              hash_combine(0xe27, hash_combine(hash_combine(0xc1, 1), hash_combine(a, b))));
}

TEST_F(UnaryOperatorsTest, printing) {
    ProcessPointer const either = choice({p, q});
    struct {
        ProcessPointer term;
        char const* full;
        char const* abbreviated;
    } const rows[] = {
        {apply(hide({b, a}), {either}), "P [] Q \\ {a, b}", "P [] Q \\ …"},
        {apply(hide({a}), {apply(hide({b}), {p})}), "P \\ {b} \\ {a}", "P \\ … \\ …"},
        {apply(hide({a}), {apply(project({b}), {p})}), "(P |\\ {b}) \\ {a}", "(P |\\ …) \\ …"},
        {apply(project({}), {p}), "P |\\ {}", "P |\\ …"},
        {apply(rename({{a, b}}), {apply(rename({}), {p})}), "P[[]][[a <- b]]", "P[[…]][[…]]"},
        {apply(rename({{a, b}}), {prefix(a, p)}), "(a -> P)[[a <- b]]", "(a -> …)[[…]]"},
        {prefix(a, apply(rename({{a, b}}), {p})), "a -> P[[a <- b]]", "a -> …"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(text(*row.term), row.full);
        EXPECT_EQ(text(*row.term, true), row.abbreviated);
    }
    struct {
        OperatorPointer op;
        char const* description;
    } const words[] = {
        {hide({a}), "Hiding event set:\n    {a}"},
        {project({a}), "Projecting event set:\n    {a}"},
        {rename({{c, a}, {a, b}}), "Rename with event map:\n    a -> b\n    c -> a\n"},
        {rename({}), "Rename with event map:\n"},
    };
    for (auto const& row : words) {
        EXPECT_EQ(description_of_operator(*row.op), row.description);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler::CSP
