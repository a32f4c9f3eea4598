#include "tests/values/program_builder.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Calder::Values {
namespace {

using Testing::Evaluation;

TEST(Evaluator, operations_have_their_operands_in_order) {
    Evaluation e;
    auto& b = e.build;
    unsigned const body = b.operation(
        Operation::sequence,
        {b.operation(Operation::subtract, {b.variable(0), b.variable(1)}), b.variable(0),
         b.operation(Operation::add, {b.constant("1"), b.constant("2")}), b.constant("<>")});
    unsigned const f = b.define("f", CallMode::evaluate, 2, 2, body);
    EXPECT_EQ(e.call(f, "7, 3"), "<4, 7, 3, <>>");
    EXPECT_EQ(e.value(b.call(f, {b.constant("1"), b.constant("2")})), "< -1, 1, 3, <>>");
}

TEST(Evaluator, conditions_stop_where_they_are_decided) {
    Evaluation e;
    auto& b = e.build;
    unsigned const yes = b.constant("true");
    unsigned const no = b.constant("false");
    unsigned const three = b.constant("3");
    unsigned const wrong = b.broken();
    unsigned const computed = b.operation(Operation::negation, {no});
    struct Row {
        unsigned expression;
        std::string outcome;
    };
    Row const rows[] = {
        {b.choice(yes, three, wrong), "3"},
        {b.choice(no, wrong, three), "3"},
        {b.choice(computed, computed, wrong), "true"},
        {b.choice(yes, wrong, three), "what is evaluated could not be read"},
        {b.choice(three, yes, no), "3 is no truth value @2"},
        {b.both(no, wrong), "false"},
        {b.both(yes, no), "false"},
        {b.both(computed, computed), "true"},
        {b.both(yes, three), "3 is no truth value @2"},
        {b.both(three, yes), "3 is no truth value @2"},
        {b.either(yes, wrong), "true"},
        {b.either(no, no), "false"},
        {b.either(no, computed), "true"},
        {b.either(no, three), "3 is no truth value @2"},
        {b.both(b.either(no, yes), b.either(computed, wrong)), "true"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(e.value(row.expression), row.outcome) << row.expression;
    }
}

TEST(Evaluator, the_first_clause_that_fits_counts) {
    Evaluation e;
    auto& b = e.build;
    // length(<>) = 0, length(<x> ^ s) = 1 + length(s)
    unsigned const length = b.declare("length", CallMode::evaluate, 1, 2);
    b.add_clause(length, {b.fixed("<>")}, b.constant("0"));
    b.add_clause(length, {b.pattern(PatternKind::front, {b.binding(0), b.binding(1)})},
                 b.operation(Operation::add, {b.constant("1"), b.call(length, {b.variable(1)})}));
    EXPECT_EQ(e.call(length, "<5, 5, 5>"), "3");
    EXPECT_EQ(e.call(length, "7"), "no clause of 'length' fits (7) @1000");
    unsigned const outer =
        b.define("outer", CallMode::evaluate, 1, 1, b.call(length, {b.variable(0)}));
    EXPECT_EQ(e.call(outer, "{}"), "no clause of 'length' fits ({}) @6 in outer({})@1000");
}

TEST(Evaluator, comprehensions_yield_every_way_to_satisfy_them) {
    Evaluation e;
    auto& b = e.build;
    unsigned const range = b.constant("{1, 2, 3}");
    unsigned const x = b.variable(0);
    unsigned const y = b.variable(3);
    Qualifier const each{b.binding(0), range, 1};
    Qualifier const each_behind{b.binding(3),
                                b.operation(Operation::sequence_range, {x, b.constant("3")}), 4};
    Qualifier const differ{no_number, b.operation(Operation::differ, {x, b.constant("2")}), 0};
    Qualifier const each_set{b.binding(0), b.constant("{{}, {1, 2}, {3}}"), 4};
    Qualifier const always{no_number, b.constant("true"), 0};
    Qualifier const never{no_number, b.constant("false"), 0};
    Qualifier const events{b.binding(0), b.constant("{think, up.0.0}"), 1};
    Qualifier const with_data{
        b.pattern(PatternKind::dotted, {b.binding(0)}, e.world.store.find_name("data")),
        b.constant("<data.1, ack, data.0, 3>"), 1};
    Qualifier const wrong{b.binding(0), b.constant("3"), 1};
    Qualifier const unclear{no_number, b.constant("7"), 0};
    unsigned const wrong_place = b.program.expressions[wrong.expression].place;
    unsigned const unclear_place = b.program.expressions[unclear.expression].place;
    struct Row {
        std::vector<Qualifier> qualifiers;
        std::vector<unsigned> results;
        std::string outcome;
    };
    unsigned const both = b.operation(Operation::tuple, {x, y});
    Row const rows[] = {
        {{}, {range}, "<{1, 2, 3}>"},
        {{each}, {x}, "<1, 2, 3>"},
        {{each}, {x, range}, "<1, {1, 2, 3}, 2, {1, 2, 3}, 3, {1, 2, 3}>"},
        {{each, differ}, {x}, "<1, 3>"},
        {{each_set, always}, {x}, "<{}, {1, 2}, {3}>"},
        {{each, each_behind}, {both}, "<(1, 1), (1, 2), (1, 3), (2, 2), (2, 3), (3, 3)>"},
        {{each, differ, each_behind}, {both}, "<(1, 1), (1, 2), (1, 3), (3, 3)>"},
        {{each, each_behind, never}, {both}, "<>"},
        {{never, wrong}, {x}, "<>"},
        {{events}, {x}, "<think, up.0.0>"},
        {{with_data}, {x}, "<1, 0>"},
        {{each, wrong}, {x}, "3 is neither a set nor a sequence @" + std::to_string(wrong_place)},
        {{unclear}, {x}, "7 is no truth value @" + std::to_string(unclear_place)},
    };
    for (Row const& row : rows) {
        unsigned const inner = b.comprehension(row.qualifiers, row.results);
        EXPECT_EQ(e.value(b.operation(Operation::sequence, {inner}), 6), row.outcome);
        // Beside other operands, and in a call.
        unsigned const beside =
            b.operation(Operation::sequence, {b.constant("-7"), inner, b.constant("-8")});
        unsigned const f = b.define("f", CallMode::evaluate, 0, 6, beside);
        if (row.outcome[0] == '<') {
            EXPECT_EQ(e.call(f, ""),
                      "< -7, " +
                          (row.outcome == "<>"
                               ? ""
                               : row.outcome.substr(1, row.outcome.size() - 2) + ", ") +
                          "-8>");
        }
    }
}

TEST(Evaluator, each_call_has_its_own_iterations) {
    Evaluation e;
    auto& b = e.build;
    // words(0) = {<>}, words(n) = {<x> ^ w | x <- {1, 2}, w <- words(n - 1)}
    unsigned const words = b.declare("words", CallMode::evaluate, 1, 7);
    b.add_clause(words, {b.fixed("0")}, b.constant("{<>}"));
    Qualifier const letter{b.binding(1), b.constant("{1, 2}"), 2};
    Qualifier const shorter{
        b.binding(4),
        b.call(words, {b.operation(Operation::subtract, {b.variable(0), b.constant("1")})}), 5};
    unsigned const longer = b.operation(
        Operation::concatenate, {b.operation(Operation::sequence, {b.variable(1)}), b.variable(4)});
    b.add_clause(words, {b.binding(0)},
                 b.operation(Operation::set, {b.comprehension({letter, shorter}, {longer})}));
    EXPECT_EQ(e.call(words, "2"), "{<1, 1>, <1, 2>, <2, 1>, <2, 2>}");
    EXPECT_EQ(e.world.store.elements(e.evaluator.call(words, e.world.read_all("10"), 0)).size(),
              1024U);
}

TEST(Evaluator, remembers_what_it_is_told_to) {
    Evaluation e;
    auto& b = e.build;
    unsigned const asked = b.construct(4, {b.variable(0)});
    unsigned const once = b.define("once", CallMode::remember, 1, 1, asked);
    unsigned const often = b.define("often", CallMode::evaluate, 1, 1, asked);
    unsigned const one = b.constant("1");
    unsigned const calls =
        b.operation(Operation::sequence,
                    {b.call(once, {one}), b.call(once, {one}), b.call(once, {b.constant("2")}),
                     b.call(often, {one}), b.call(often, {one})});
    EXPECT_EQ(e.value(calls), "<(4, <1>), (4, <1>), (4, <2>), (4, <1>), (4, <1>)>");
    EXPECT_EQ(e.host.questions, 4U);
    EXPECT_EQ(e.call(once, "2"), "(4, <2>)");
    EXPECT_EQ(e.host.questions, 4U);
    // fibonacci(40) would take 300 million calls.
    unsigned const fibonacci = b.declare("fibonacci", CallMode::remember, 1, 1);
    b.add_clause(fibonacci, {b.fixed("0")}, b.constant("0"));
    b.add_clause(fibonacci, {b.fixed("1")}, one);
    auto const before = [&](char const* distance) {
        return b.call(fibonacci,
                      {b.operation(Operation::subtract, {b.variable(0), b.constant(distance)})});
    };
    b.add_clause(fibonacci, {b.binding(0)},
                 b.operation(Operation::add, {before("1"), before("2")}));
    EXPECT_EQ(e.call(fibonacci, "40"), "102334155");
}

TEST(Evaluator, finds_values_that_depend_on_themselves) {
    Evaluation e;
    auto& b = e.build;
    unsigned const f = b.declare("f", CallMode::remember, 1, 1);
    unsigned const g = b.define("g", CallMode::evaluate, 1, 1, b.call(f, {b.variable(0)}));
    b.add_clause(f, {b.fixed("1")}, b.constant("0"));
    b.add_clause(f, {b.binding(0)}, b.call(g, {b.variable(0)}));
    for (unsigned round = 0; round < 2; ++round) { // nothing is left behind
        EXPECT_EQ(e.call(g, "7"), "the value of 'f(7)' depends on itself @1 in g(7)@4 in f(7)@1 "
                                  "in g(7)@1000");
        EXPECT_EQ(e.call(g, "1"), "0");
    }
}

TEST(Evaluator, asks_the_host_for_constructs_and_references) {
    Evaluation e;
    auto& b = e.build;
    unsigned const process =
        b.define("P", CallMode::refer, 1, 1, b.construct(9, {b.variable(0), b.variable(0)}));
    unsigned const caller =
        b.define("f", CallMode::evaluate, 1, 1,
                 b.construct(8, {b.call(process, {b.variable(0)}), b.construct(7, {})}));
    EXPECT_EQ(e.call(caller, "3"), "(8, <(0, <3>), (7, <>)>)");
    EXPECT_EQ(e.call(process, "3"), "(9, <3, 3>)");
}

/// Throws what it was given.
class FaultyHost : public Testing::TupleHost {
  public:
    using TupleHost::TupleHost;
    Value construct(Expression const& expression, std::span<Value const>) override {
        switch (expression.number) {
        case 0: throw ValueError("wrong");
        case 1: throw EvaluationError(77, "wrong elsewhere");
        case 2: {
            EvaluationError error(77, "wrong inside");
            error.calls.push_back({1, {Value::truth(true)}, 55});
            throw error;
        }
        case 3: {
            EvaluationError error(77, "wrong far inside");
            error.calls.assign(40, {1, {Value::truth(true)}, 55});
            throw error;
        }
        default: throw std::runtime_error("other");
        }
    }
};

TEST(Evaluator, what_the_host_throws_gets_its_place_and_calls) {
    Evaluation e;
    auto& b = e.build;
    FaultyHost host(e.world.store);
    Evaluator evaluator(b.program, e.world.store, e.world.channels, host);
    char const* const outcomes[] = {
        "wrong @0 in f(3)@1000",
        "wrong elsewhere @77 in g(3)@1000",
        "wrong inside @77 in g(true)@55 in h(3)@1000",
    };
    char const* const names[] = {"f", "g", "h"};
    for (unsigned number = 0; number < 3; ++number) {
        unsigned const f =
            b.define(names[number], CallMode::remember, 1, 1, b.construct(number, {}));
        EXPECT_EQ(e.outcome([&] { return evaluator.call(f, e.world.read_all("3"), 1000); }),
                  outcomes[number]);
    }
    unsigned const deep = b.define("deep", CallMode::remember, 1, 1, b.construct(3, {}));
    try {
        evaluator.call(deep, e.world.read_all("3"), 1000);
        ADD_FAILURE();
    } catch (EvaluationError const& error) {
        ASSERT_EQ(error.calls.size(), 11U); // five, what is left out, five
        EXPECT_EQ(error.calls[5].definition, no_number);
        EXPECT_EQ(error.calls[10].definition, deep);
    }
    unsigned const f = b.define("f", CallMode::remember, 1, 1, b.construct(4, {}));
    for (unsigned round = 0; round < 2; ++round) { // and it is not taken for a call under way
        EXPECT_THROW(evaluator.call(f, e.world.read_all("3"), 0), std::runtime_error);
    }
    EXPECT_EQ(e.outcome([&] { return evaluator.evaluate(b.constant("5")); }), "5");
}

TEST(Evaluator, errors_have_the_place_of_what_is_wrong_and_the_calls_that_led_there) {
    Evaluation e;
    auto& b = e.build;
    unsigned const division = b.operation(Operation::divide, {b.constant("1"), b.variable(0)});
    unsigned const inner = b.define("inner", CallMode::remember, 1, 1, division);
    unsigned const call = b.call(inner, {b.variable(1)});
    unsigned const outer = b.define("outer", CallMode::evaluate, 2, 2,
                                    b.operation(Operation::add, {b.constant("1"), call}));
    EXPECT_EQ(e.call(outer, "8, 0"), "1 / 0: division by zero @2 in inner(0)@" +
                                         std::to_string(call) + " in outer(8, 0)@1000");
    EXPECT_EQ(e.call(outer, "8, 1"), "2");
    EXPECT_EQ(e.value(b.operation(Operation::head, {b.constant("<>")})),
              "'head' of an empty sequence @8");
}

} // namespace
} // namespace Calder::Values
