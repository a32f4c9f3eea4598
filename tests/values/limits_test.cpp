#include "tests/values/program_builder.h"
#include "values/limits.h"

#include <gtest/gtest.h>

namespace Calder::Values {
namespace {

using Testing::Evaluation;

/// count(0) = 0, count(n) = 1 + count(n - 1)
unsigned define_count(Testing::ProgramBuilder& b, CallMode mode) {
    unsigned const count = b.declare("count", mode, 1, 1);
    b.add_clause(count, {b.fixed("0")}, b.constant("0"));
    unsigned const less = b.operation(Operation::subtract, {b.variable(0), b.constant("1")});
    b.add_clause(count, {b.binding(0)},
                 b.operation(Operation::add, {b.constant("1"), b.call(count, {less})}));
    return count;
}

TEST(Limits, calls_nest_to_a_limit_and_errors_tell_the_first_and_last_ones) {
    for (CallMode const mode : {CallMode::evaluate, CallMode::remember}) {
        Evaluation e;
        unsigned const count = define_count(e.build, mode);
        std::string const most = std::to_string(call_nesting_limit - 1);
        EXPECT_EQ(e.call(count, most.c_str()), most);
        EXPECT_EQ(e.call(count, "300000"),
                  "the calls nest too deeply: more than 100000 @5 "
                  "in count(200001)@5 in count(200002)@5 in count(200003)@5 in count(200004)@5 "
                  "in count(200005)@5 … in count(299996)@5 in count(299997)@5 in count(299998)@5 "
                  "in count(299999)@5 in count(300000)@1000");
        EXPECT_EQ(e.call(count, "10"), "10");
    }
}

TEST(Limits, chains_of_calls_are_told_in_full_while_they_are_short) {
    Evaluation e;
    auto& b = e.build;
    // Down to count(-1), which no clause fits, through n + 1 calls.
    unsigned const count = b.declare("count", CallMode::evaluate, 1, 1);
    unsigned const less = b.operation(Operation::subtract, {b.variable(0), b.constant("1")});
    unsigned const deeper = b.call(count, {less});
    b.add_clause(count, {b.fixed("-1")}, b.broken());
    b.add_clause(count, {b.binding(0)},
                 b.choice(b.operation(Operation::equal, {b.variable(0), b.constant("0")}),
                          b.operation(Operation::head, {b.constant("<>")}), deeper));
    auto const calls_of = [&](char const* argument) {
        try {
            e.evaluator.call(count, e.world.read_all(argument), 0);
        } catch (EvaluationError const& error) {
            return error.calls.size();
        }
        return std::size_t{0};
    };
    EXPECT_EQ(calls_of("0"), 1U);
    EXPECT_EQ(calls_of("9"), 10U);
    EXPECT_EQ(calls_of("10"), 11U); // five, what is left out, five
    EXPECT_EQ(calls_of("11"), 11U);
}

TEST(Limits, expressions_nest_without_end) {
    Evaluation e;
    auto& b = e.build;
    unsigned sum = b.constant("0");
    unsigned const one = b.constant("1");
    unsigned const yes = b.constant("true");
    unsigned truth = yes;
    unsigned const no = b.constant("false");
    for (unsigned level = 0; level < 1'000'000; ++level) {
        sum = b.operation(Operation::add, {one, sum});
        truth = level % 2 == 0 ? b.either(no, truth) : b.choice(truth, yes, no);
    }
    EXPECT_EQ(e.value(sum), "1000000");
    EXPECT_EQ(e.value(truth), "true");
}

TEST(Limits, comprehensions_and_collections_have_a_largest_size) {
    Evaluation e;
    auto& b = e.build;
    auto const squares = [&](char const* last) {
        Qualifier const each{b.binding(0),
                             b.operation(Operation::set_range, {b.constant("1"), b.constant(last)}),
                             1};
        Qualifier const other{b.binding(3), each.expression, 4};
        unsigned const pair = b.operation(Operation::tuple, {b.variable(0), b.variable(3)});
        unsigned const all = b.operation(Operation::set, {b.comprehension({each, other}, {pair})});
        return b.operation(Operation::cardinality, {all});
    };
    auto const numbers = [&](char const* first, char const* last) {
        return b.operation(Operation::set_range, {b.constant(first), b.constant(last)});
    };
    unsigned const most =
        b.operation(Operation::sequence_range, {b.constant("1"), b.constant("1000000")});
    struct Row {
        unsigned expression;
        std::string outcome;
    };
    Row const rows[] = {
        {squares("1000"), "1000000"},
        {squares("1001"), "a comprehension has more than 1000000 elements"},
        {b.operation(Operation::concatenate, {most, b.constant("<1>")}),
         "a concatenation has more than 1000000 elements"},
        {b.operation(Operation::set_union, {numbers("1", "1000000"), numbers("0", "0")}),
         "a union has more than 1000000 elements"},
        {b.operation(
             Operation::cardinality,
             {b.operation(Operation::set_union, {numbers("1", "1000000"), numbers("7", "9")})}),
         "1000000"},
    };
    for (Row const& row : rows) {
        std::string const outcome = e.value(row.expression, 6);
        EXPECT_EQ(outcome.substr(0, outcome.find(" @")), row.outcome);
    }
}

/// A sequence that is taken apart from the front keeps one copy of its elements: otherwise these
/// would be 40 GB.
TEST(Limits, long_sequences_can_be_taken_apart) {
    Evaluation e;
    auto& b = e.build;
    unsigned const sum = b.declare("sum", CallMode::evaluate, 1, 2);
    b.add_clause(sum, {b.fixed("<>")}, b.constant("0"));
    b.add_clause(sum, {b.pattern(PatternKind::front, {b.binding(0), b.binding(1)})},
                 b.operation(Operation::add, {b.variable(0), b.call(sum, {b.variable(1)})}));
    unsigned const range =
        b.operation(Operation::sequence_range, {b.constant("1"), b.constant("99000")});
    EXPECT_EQ(e.value(b.call(sum, {range})), "4900549500");
}

} // namespace
} // namespace Calder::Values
