#include "tests/values/world.h"
#include "values/operations.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>

namespace Calder::Values {
namespace {

using Testing::World;

struct Row {
    Operation operation;
    char const* operands;
    char const* outcome;
};

void check(std::span<Row const> rows) {
    World world;
    Operations const operations(world.channels);
    for (Row const& row : rows) {
        std::vector<Value> const operands = world.read_all(row.operands);
        EXPECT_EQ(
            Testing::outcome_of(world, [&] { return operations.apply(row.operation, operands); }),
            row.outcome)
            << symbol_of(row.operation) << ": " << row.operands;
        if (Value const quick = quick_result(row.operation, operands)) {
            EXPECT_EQ(world.text(quick), row.outcome)
                << symbol_of(row.operation) << ": " << row.operands;
        }
    }
}

TEST(Operations, of_integers) {
    Row const rows[] = {
        {Operation::add, "2, 3", "5"},
        {Operation::add, "1152921504606846975, 1", "1152921504606846976"},
        {Operation::add, "9223372036854775807, 1",
         "the sum 9223372036854775807 + 1 does not fit into 64 bits"},
        {Operation::subtract, "2, 3", "-1"},
        {Operation::subtract, "-1152921504606846976, 1", "-1152921504606846977"},
        {Operation::subtract, "-9223372036854775808, 1",
         "the difference -9223372036854775808 - 1 does not fit into 64 bits"},
        {Operation::multiply, "-4, 3", "-12"},
        {Operation::multiply, "4611686018427387904, 2",
         "the product 4611686018427387904 * 2 does not fit into 64 bits"},
        {Operation::divide, "7, 2", "3"},
        {Operation::divide, "-7, 2", "-4"},
        {Operation::divide, "7, -2", "-4"},
        {Operation::divide, "-7, -2", "3"},
        {Operation::divide, "-6, 2", "-3"},
        {Operation::divide, "6, -1", "-6"},
        {Operation::divide, "-9223372036854775808, -1",
         "the quotient -9223372036854775808 / -1 does not fit into 64 bits"},
        {Operation::divide, "5, 0", "5 / 0: division by zero"},
        {Operation::remainder, "7, 3", "1"},
        {Operation::remainder, "-7, 3", "2"},
        {Operation::remainder, "7, -3", "-2"},
        {Operation::remainder, "-7, -3", "-1"},
        {Operation::remainder, "-6, 3", "0"},
        {Operation::remainder, "-9223372036854775808, -1", "0"},
        {Operation::remainder, "5, 0", "5 % 0: division by zero"},
        {Operation::negate, "3", "-3"},
        {Operation::negate, "-9223372036854775808",
         "the negative of -9223372036854775808 does not fit into 64 bits"},
        {Operation::less, "1, 2", "true"},
        {Operation::less, "2, 2", "false"},
        {Operation::at_most, "2, 2", "true"},
        {Operation::at_most, "3, 2", "false"},
        {Operation::greater, "3, 2", "true"},
        {Operation::greater, "2, 2", "false"},
        {Operation::at_least, "2, 2", "true"},
        {Operation::at_least, "-2, 2", "false"},
        {Operation::add, "1, <1>", "'+' wants integers, and <1> is a sequence"},
        {Operation::less, "true, 1", "'<' wants integers, and true is a truth value"},
        {Operation::negate, "ack", "'-' wants an integer, and ack is a name"},
        {Operation::sequence_range, "-1, 2", "< -1, 0, 1, 2>"},
        {Operation::sequence_range, "2, 1", "<>"},
        {Operation::set_range, "2, 2", "{2}"},
        {Operation::set_range, "9223372036854775806, 9223372036854775807",
         "{9223372036854775806, 9223372036854775807}"},
        {Operation::set_range, "1, 1000001", "the range 1..1000001 has more than 1000000 elements"},
        {Operation::sequence_range, "-9223372036854775808, 9223372036854775807",
         "the range -9223372036854775808..9223372036854775807 has more than 1000000 elements"},
        {Operation::set_range, "0, {1}", "'m..n' wants integers, and {1} is a set"},
    };
    check(rows);
}

TEST(Operations, of_any_values_and_truth_values) {
    Row const rows[] = {
        {Operation::equal, "<1, 2>, <1, 2>", "true"},
        {Operation::equal, "1, true", "false"},
        {Operation::equal, "2, 2", "true"},
        {Operation::differ, "2, 3", "true"},
        {Operation::differ, "{2, 1}, {1, 2}", "false"},
        {Operation::differ, "data.0, data.1", "true"},
        {Operation::negation, "true", "false"},
        {Operation::negation, "3", "'not' wants a truth value, and 3 is an integer"},
        {Operation::tuple, "1, ack", "(1, ack)"},
        {Operation::sequence, "2, 1, 2", "<2, 1, 2>"},
        {Operation::sequence, "", "<>"},
        {Operation::set, "2, 1, 2", "{1, 2}"},
        {Operation::set, "up.0.1, think", "{think, up.0.1}"},
    };
    check(rows);
}

TEST(Operations, of_sequences) {
    Row const rows[] = {
        {Operation::concatenate, "<1>, <2, 3>", "<1, 2, 3>"},
        {Operation::concatenate, "<>, <>", "<>"},
        {Operation::concatenate, "<1>, {2}", "'^' wants sequences, and {2} is a set"},
        {Operation::length, "<1, 1>", "2"},
        {Operation::length, "{1}", "'#' wants a sequence, and {1} is a set"},
        {Operation::head, "<4, 5>", "4"},
        {Operation::head, "<>", "'head' of an empty sequence"},
        {Operation::head, "(4, 5)", "'head' wants a sequence, and (4, 5) is a tuple"},
        {Operation::tail, "<4, 5>", "<5>"},
        {Operation::tail, "<4>", "<>"},
        {Operation::tail, "<>", "'tail' of an empty sequence"},
        {Operation::is_null, "<>", "true"},
        {Operation::is_null, "<0>", "false"},
        {Operation::is_element, "<2>, <1, <2>>", "true"},
        {Operation::is_element, "2, <1, <2>>", "false"},
        {Operation::is_element, "2, 3", "'elem' wants a sequence, and 3 is an integer"},
        {Operation::concat, "<<1, 2>, <>, <3>>", "<1, 2, 3>"},
        {Operation::concat, "<>", "<>"},
        {Operation::concat, "<<1>, 2>",
         "'concat' wants a sequence of sequences, and 2 is an integer"},
        {Operation::set_of, "<3, 1, 3>", "{1, 3}"},
    };
    check(rows);
}

TEST(Operations, of_sets) {
    Row const rows[] = {
        {Operation::sequence_of, "{3, 1}", "<1, 3>"},
        {Operation::sequence_of, "{up.0.1, think}", "<think, up.0.1>"},
        {Operation::set_union, "{1, 3}, {2, 3}", "{1, 2, 3}"},
        {Operation::set_union, "{think}, {up.0.0, 4}", "{4, think, up.0.0}"},
        {Operation::set_union, "{think}, {}", "{think}"},
        {Operation::set_union, "{think}, {up}", "{think, up}"},
        {Operation::set_union, "{think}, {ack}", "{ack, think}"},
        {Operation::set_union, "{1}, <2>", "'union' wants sets, and <2> is a sequence"},
        {Operation::intersection, "{1, 3}, {2, 3}", "{3}"},
        {Operation::intersection, "{think, up.0.0}, {up.0.0, up}", "{up.0.0}"},
        {Operation::difference, "{1, 3}, {2, 3}", "{1}"},
        {Operation::difference, "{think, up.0.0}, {up.0.0, up.0.1}", "{think}"},
        {Operation::difference, "{think, 1}, {think}", "{1}"},
        {Operation::is_member, "3, {1, 3}", "true"},
        {Operation::is_member, "think, {think}", "true"},
        {Operation::is_member, "up, {think}", "false"},
        {Operation::is_member, "1, {}", "false"},
        {Operation::cardinality, "{1, {}}", "2"},
        {Operation::cardinality, "{think, tick}", "2"},
        {Operation::is_empty, "{}", "true"},
        {Operation::is_empty, "{{}}", "false"},
        {Operation::big_union, "{{1}, {2, 3}, {think}}", "{1, 2, 3, think}"},
        {Operation::big_union, "{{think}, {up.0.0}}", "{think, up.0.0}"},
        {Operation::big_union, "{}", "{}"},
        {Operation::big_union, "{{1}, 2}", "'Union' wants a set of sets, and 2 is an integer"},
        {Operation::big_intersection, "{{1, 2, 3}, {2, 3}, {3, 4}}", "{3}"},
        {Operation::big_intersection, "{}", "'Inter' of the empty set"},
        {Operation::power_set, "{}", "{{}}"},
        {Operation::power_set, "{1, 2, 3}",
         "{{}, {1}, {1, 2}, {1, 2, 3}, {1, 3}, {2}, {2, 3}, {3}}"},
        {Operation::power_set, "{think, 1}", "{{}, {1}, {1, think}, {think}}"},
        {Operation::power_set,
         "{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20}",
         "the sets of elements of a set of 20 are more than 1000000"},
    };
    check(rows);
}

TEST(Operations, of_fields_and_events) {
    Row const rows[] = {
        {Operation::dot, "up, 1, 2", "up.1.2"},
        {Operation::dot, "in, data.1", "in.data.1"},
        {Operation::dot, "data, 1", "data.1"},
        {Operation::dot, "1, 2",
         "only a channel, an event or a name takes fields, and 1 is an integer"},
        {Operation::closure, "in, think", "{think, in.data.0, in.data.1, in.ack}"},
        {Operation::closure, "", "{}"},
        {Operation::closure, "3", "3 is an integer where a channel or an event is wanted"},
        {Operation::field_values, "in, 0", "{data.0, data.1, ack}"},
    };
    check(rows);
}

/// Events and integers mixed, so that every way to keep a set meets every other.
RC_GTEST_PROP(OperationsProperty, sets_hold_what_they_should, ()) {
    World world;
    std::vector<Value> universe;
    for (unsigned number = 3; number < 150; ++number) {
        universe.push_back(number % 7 == 0 ? world.store.integer(number) : Value::event(number));
    }
    auto const any_set = [&] {
        bool const has_integers = *rc::gen::arbitrary<bool>();
        std::set<std::size_t> places;
        for (std::size_t const place :
             *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, 147))) {
            if (has_integers || universe[place].is(Value::Kind::event)) {
                places.insert(place);
            }
        }
        return places;
    };
    auto const left = any_set();
    auto const right = any_set();
    auto const made = [&](auto const& places) {
        std::vector<Value> elements;
        for (std::size_t const place : places) {
            elements.push_back(universe[place]);
        }
        return world.store.set(elements);
    };
    Operations const operations(world.channels);
    std::vector<Value> const operands = {made(left), made(right)};
    Value const both = operations.apply(Operation::set_union, operands);
    Value const common = operations.apply(Operation::intersection, operands);
    Value const rest = operations.apply(Operation::difference, operands);
    for (std::size_t place = 0; place < universe.size(); ++place) {
        bool const in_left = left.contains(place);
        bool const in_right = right.contains(place);
        RC_ASSERT(has_member(world.store, both, universe[place]) == (in_left || in_right));
        RC_ASSERT(has_member(world.store, common, universe[place]) == (in_left && in_right));
        RC_ASSERT(has_member(world.store, rest, universe[place]) == (in_left && !in_right));
    }
    RC_ASSERT(size_of(both) + size_of(common) == left.size() + right.size());
    RC_ASSERT(size_of(rest) + size_of(common) == left.size());
    RC_ASSERT(is_event_set(rest) ==
              std::ranges::all_of(world.store.elements(rest),
                                  [](Value value) { return value.is(Value::Kind::event); }));
}

} // namespace
} // namespace Calder::Values
