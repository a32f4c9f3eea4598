#include "tests/values/world.h"
#include "values/limits.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace Calder::Values {
namespace {

using Testing::World;

TEST(Value, is_written_as_it_is_read) {
    World world;
    for (char const* const text : {
             "-3",
             "9223372036854775807",
             "-9223372036854775808",
             "true",
             "data.0",
             "pair.data.1.ack",
             "data",
             "(1, <>)",
             "<1, 2>",
             "< -1, 2>",
             "{ -1, 2}",
             "{}",
             "{{}, {1}}",
             "{false, 1, ack, tick, think}",
             "(-1, {<true>})",
             "think",
             "tick",
             "in",
             "in.data",
             "in.data.0",
             "up.3",
             "far.-1.true",
             "{think, up.0.1}",
             "{think, up.0}",
         }) {
        EXPECT_EQ(world.text(world.read(text)), text);
    }
}

TEST(Value, equal_ones_are_one_word_however_they_were_made) {
    World world;
    ValueStore& store = world.store;
    struct Row {
        Value left;
        Value right;
    };
    std::vector<Value> const two = world.read_all("up.1.2, think");
    BitSet bits;
    bits.insert(two[0].as_event());
    bits.insert(two[1].as_event());
    Row const rows[] = {
        {world.read("{2, 1, 2}"), world.read("{1, 2}")},
        {store.set(two), store.event_set(bits)},
        {store.set_from_sorted(world.read_all("think, up.1.2")), store.event_set(bits)},
        {store.set({}), store.event_set({})},
        {store.set_from_sorted({}), store.set({})},
        {store.suffix(world.read("<3, 1, 2>"), 1), world.read("<1, 2>")},
        {store.suffix(world.read("<3, <1>, 2>"), 2), world.read("<2>")},
        {store.suffix(world.read("<3, 1>"), 2), world.read("<>")},
        {store.dotted(store.find_name("pair"), world.read_all("data.0, ack")),
         store.dotted(store.dotted(store.find_name("pair"), world.read_all("data, 0")),
                      world.read_all("ack"))},
        {store.integer(INT64_MIN), store.integer(INT64_MIN)},
        {store.name("ack"), store.find_name("ack")},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.left, row.right) << world.text(row.left) << " " << world.text(row.right);
    }
    EXPECT_NE(world.read("(1, 2)"), world.read("<1, 2>"));
    EXPECT_NE(world.read("<1, 2>"), world.read("{1, 2}"));
    EXPECT_NE(world.read("<>"), world.read("{}"));
    EXPECT_NE(world.read("<1, 2>"), world.read("<2, 1>"));
}

TEST(Value, order_is_that_of_values) {
    World world;
    // Each stands before all that follow.
    std::vector<Value> const ordered = world.read_all(
        "false, true, -9223372036854775808, -1, 0, 1, 9223372036854775807, "
        "data, data.0, data.1, ack, pair.data.0, pair.data.0.ack, pair.ack, red, green, "
        "tick, think, up.0.0, up.0.1, in.ack, up, up.0, up.1, in, in.data, "
        "(0, 5), (1, 2), (1, 2, 3), (1, <>), <>, <0>, <0, 0>, <1>, {}, {0}, {0, 1}, {1}, "
        "{1, think}, {think}, {think, up.0.1}, {think, up.0.2}, {think, up}, {up.0.0}");
    for (std::size_t left = 0; left < ordered.size(); ++left) {
        for (std::size_t right = 0; right < ordered.size(); ++right) {
            EXPECT_TRUE(compare(ordered[left], ordered[right]) == (left <=> right))
                << world.text(ordered[left]) << " " << world.text(ordered[right]);
        }
    }
    std::vector<Value> backwards(ordered.rbegin(), ordered.rend());
    std::span<Value const> const elements = world.store.elements(world.store.set(backwards));
    EXPECT_TRUE(std::ranges::equal(elements, ordered));
}

TEST(Value, sets_of_events_are_bit_sets_and_list_their_elements) {
    World world;
    Value const set = world.read("{up.4.4, think}");
    ASSERT_TRUE(is_event_set(set));
    EXPECT_EQ(events_of(set).size(), 2U);
    EXPECT_TRUE(std::ranges::equal(world.store.elements(set), world.read_all("think, up.4.4")));
    EXPECT_FALSE(is_event_set(world.read("{think, up}")));
    EXPECT_FALSE(is_event_set(world.read("<think>")));
}

TEST(Value, text_is_cut_between_characters_and_in_no_time) {
    World world;
    EXPECT_EQ(short_text_of(world.channels, world.read("<1, 2, 3>"), 9), "<1, 2, 3>");
    EXPECT_EQ(short_text_of(world.channels, world.read("<1, 2, 3>"), 8), "<1, 2, 3…");
    Value const name = world.store.name("xä");
    EXPECT_EQ(short_text_of(world.channels, name, 3), "xä");
    EXPECT_EQ(short_text_of(world.channels, name, 2), "x…");
    // 2 to the power of 900 ones, each pair of parts shared.
    Value large = Value::small_integer(1);
    for (unsigned level = 0; level < 900; ++level) {
        large = world.store.tuple(std::vector{large, large});
    }
    EXPECT_EQ(short_text_of(world.channels, large, 3), "(((…");
    EXPECT_EQ(Testing::outcome_of(world, [&] { return large; }),
              "the text of a value has more than 100000000 characters");
    EXPECT_EQ(short_text_of(world.channels, world.read_all("3, <>")), "(3, <>)");
    EXPECT_EQ(short_text_of(world.channels, std::span<Value const>()), "");
}

TEST(Value, nests_to_a_limit) {
    World world;
    Value value = world.read("<>");
    for (unsigned level = 1; level < value_nesting_limit; ++level) {
        value = world.store.sequence({&value, 1});
    }
    EXPECT_EQ(world.text(value).size(), 2 * value_nesting_limit);
    // Behind the deep one, there is room again.
    Value shallow = world.store.suffix(
        world.store.sequence(std::vector{world.store.elements(value)[0], Value::truth(true)}), 1);
    for (unsigned level = 1; level < value_nesting_limit; ++level) {
        shallow = world.store.tuple(std::vector{shallow, shallow});
    }
    for (bool const is_set : {false, true}) {
        EXPECT_EQ(
            Testing::outcome_of(
                world,
                [&] {
                    return is_set ? world.store.set({&value, 1}) : world.store.tuple({&value, 1});
                }),
            "the values nest too deeply: more than 1000 within each other");
    }
}

/// Any small integers; their sets and suffixes against the standard library's.
RC_GTEST_PROP(ValueProperty, sets_and_suffixes_hold_what_they_should, ()) {
    auto const numbers = *rc::gen::container<std::vector<int>>(rc::gen::inRange(-20, 20));
    World world;
    std::vector<Value> values;
    for (int const number : numbers) {
        values.push_back(world.store.integer(number));
    }
    auto sorted = numbers;
    std::ranges::sort(sorted);
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    auto const elements = world.store.elements(world.store.set(values));
    RC_ASSERT(std::ranges::equal(elements, sorted, {}, &Value::as_integer));
    Value const sequence = world.store.sequence(values);
    for (std::size_t count = 0; count <= values.size(); ++count) {
        RC_ASSERT(world.store.suffix(sequence, count) ==
                  world.store.sequence(std::span(values).subspan(count)));
    }
}

} // namespace
} // namespace Calder::Values
