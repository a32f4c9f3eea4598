#include "tests/values/world.h"

#include <gtest/gtest.h>

namespace Calder::Values {
namespace {

using Testing::World;

TEST(ChannelTable, completes_what_is_declared_and_tells_what_does_not_fit) {
    struct Row {
        char const* base;
        char const* more;
        char const* outcome;
    };
    Row const rows[] = {
        {"up", "0", "up.0"},
        {"up", "0, 4", "up.0.4"},
        {"up.0", "4", "up.0.4"},
        {"up", "", "up"},
        {"up", "7", "the event 'up.7' is not declared: 7 is no value of field 1 of 'up'"},
        {"up", "-1", "the event 'up.-1' is not declared: -1 is no value of field 1 of 'up'"},
        {"up.1", "5", "the event 'up.1.5' is not declared: 5 is no value of field 2 of 'up'"},
        {"up", "true", "the event 'up.true' is not declared: true is no value of field 1 of 'up'"},
        {"up.0.0", "1", "the event 'up.0.0.1' is not declared: 'up' takes 2 fields"},
        {"think", "1", "the event 'think.1' is not declared: 'think' takes no fields"},
        {"tick", "1", "'tick' takes no fields"},
        {"in", "data.1", "in.data.1"},
        {"in", "data, 1", "in.data.1"},
        {"in", "data", "in.data"},
        {"in.data", "1", "in.data.1"},
        {"in", "data, 2",
         "the event 'in.data.2' is not declared: data.2 is no value of field 1 of 'in'"},
        {"in", "ack, 0", "the event 'in.ack.0' is not declared: 'in' takes one field"},
        {"in", "pair", "the event 'in.pair' is not declared: pair is no value of field 1 of 'in'"},
        {"both", "pair.data.0.ack, 9", "both.pair.data.0.ack.9"},
        {"both.pair", "ack, data", "both.pair.ack.data"},
        {"both.pair.ack.data", "1, 7", "both.pair.ack.data.1.7"},
        {"both", "pair, ack, ack, 8",
         "the event 'both.pair.ack.ack.8' is not declared: 8 is no value of field 2 of 'both'"},
        {"both", "pair, 3, ack",
         "the event 'both.pair.3.ack' is not declared: pair.3.ack is no value of field 1 of "
         "'both'"},
        {"c", "1", "c.1"},
        {"c", "1, 5", "c.1.5"},
        {"c.1", "5", "c.1.5"},
        {"c.1", "7", "the event 'c.1.7' is not declared: 7 is no value of field 2 of 'c'"},
        {"far", "-1, false", "far.-1.false"},
        {"far", "0", "the event 'far.0' is not declared: 0 is no value of field 1 of 'far'"},
        {"data", "1", "data.1"},
        {"data", "2", "'data.2' is no value: 2 is no value of field 1 of 'data'"},
        {"data", "1, 1", "'data.1.1' is no value: 'data' takes one field"},
        {"ack", "1", "'ack.1' is no value: 'ack' takes no fields"},
        {"pair", "data.1", "pair.data.1"},
        {"pair.data", "1, ack", "pair.data.1.ack"},
        {"3", "1", "only a channel, an event or a name takes fields, and 3 is an integer"},
    };
    World world;
    for (Row const& row : rows) {
        std::string const outcome = Testing::outcome_of(world, [&] {
            return world.channels.with_fields(world.read(row.base), world.read_all(row.more));
        });
        EXPECT_EQ(outcome, row.outcome) << row.base << " with " << row.more;
    }
}

TEST(ChannelTable, every_event_has_a_number_parts_and_a_name_that_lead_to_it) {
    World world;
    EXPECT_EQ(world.read("think").as_event(), first_declared_number);
    EXPECT_EQ(world.read("up.0.0").as_event(), 4U);
    EXPECT_EQ(world.read("up.0.1").as_event(), 5U); // the last field runs fastest
    EXPECT_EQ(world.read("up.1.0").as_event(), 9U);
    EXPECT_EQ(world.next_event, 3U + 1 + 25 + 3 + 18 + 2 + 4 + 4);
    for (unsigned number = first_declared_number; number < world.next_event; ++number) {
        std::string const name = world.channels.event_name(number);
        EXPECT_EQ(world.read(name), Value::event(number)) << name;
        auto const parts = world.channels.parts_of(number);
        ASSERT_TRUE(parts);
        Value const channel = world.channels.find(world.channels.name_of(parts->channel));
        EXPECT_EQ(world.channels.with_fields(channel, parts->fields), Value::event(number)) << name;
    }
    EXPECT_EQ(world.channels.parts_of(world.read("in.data.1").as_event())->fields,
              world.read_all("data.1"));
    EXPECT_FALSE(world.channels.parts_of(tick_number));
    EXPECT_FALSE(world.channels.parts_of(world.next_event));
    EXPECT_EQ(world.channels.event_name(tau_number), "tau");
    EXPECT_EQ(world.channels.events().size(), world.next_event - first_declared_number);
    EXPECT_FALSE(world.channels.find("tau"));
    EXPECT_FALSE(world.channels.find("none"));
}

TEST(ChannelTable, closures_hold_what_begins_so) {
    struct Row {
        char const* beginning;
        char const* events;
    };
    Row const rows[] = {
        {"think", "{think}"},
        {"tick", "{tick}"},
        {"up.3", "{up.3.0, up.3.1, up.3.2, up.3.3, up.3.4}"},
        {"up.3.1", "{up.3.1}"},
        {"in", "{in.data.0, in.data.1, in.ack}"},
        {"in.data", "{in.data.0, in.data.1}"},
        {"both.pair.ack.data", "{both.pair.ack.data.0.7, both.pair.ack.data.0.9, "
                               "both.pair.ack.data.1.7, both.pair.ack.data.1.9}"},
        {"c", "{c.0, c.1, c.0.5, c.0.6, c.1.5, c.1.6}"},
        {"c.1", "{c.1, c.1.5, c.1.6}"},
    };
    World world;
    for (Row const& row : rows) {
        BitSet events;
        world.channels.insert_closure(world.read(row.beginning), events);
        EXPECT_EQ(world.text(world.store.event_set(events)), row.events) << row.beginning;
    }
}

TEST(ChannelTable, tells_what_the_next_field_may_be) {
    struct Row {
        char const* beginning;
        unsigned fields_behind;
        char const* values;
    };
    Row const rows[] = {
        {"up", 1, "{0, 1, 2, 3, 4}"},
        {"up.3", 0, "{0, 1, 2, 3, 4}"},
        {"up.3.1", 0, "'up.3.1' takes no further field"},
        {"in", 0, "{data.0, data.1, ack}"},
        {"in.data", 0, "{0, 1}"},
        {"both.pair", 2, "{data.0, data.1, ack}"},
        {"both.pair.data", 2, "{0, 1}"},
        {"both.pair.ack", 1, "{data.0, data.1, ack}"},
        {"both.pair.ack.ack", 0, "{7, 9}"},
        {"c", 0, "{0, 1}"},
        {"c.1", 0, "{5, 6}"},
        {"c", 5, "{0, 1}"},
        {"far.3", 0, "{false, true}"},
        {"think", 0, "'think' takes no further field"},
        {"tick", 0, "'tick' takes no fields"},
        {"<>", 0, "<> is a sequence where a channel or an event is wanted"},
    };
    World world;
    for (unsigned round = 0; round < 2; ++round) { // the second time from what is kept
        for (Row const& row : rows) {
            EXPECT_EQ(Testing::outcome_of(world,
                                          [&] {
                                              return world.channels.field_values(
                                                  world.read(row.beginning), row.fields_behind);
                                          }),
                      row.values)
                << row.beginning;
        }
    }
}

TEST(ChannelTable, of_several_declarations_those_with_as_many_fields_count) {
    World world;
    world.declare("d", {world.read_all("1, 2")});
    world.declare("d", {world.read_all("3"), world.read_all("4")});
    world.declare("d", {world.read_all("5, 6"), world.read_all("7")});
    Value const channel = world.channels.find("d");
    EXPECT_EQ(world.text(world.channels.field_values(channel, 0)), "{1, 2}");
    EXPECT_EQ(world.text(world.channels.field_values(channel, 1)), "{3, 5, 6}");
    EXPECT_EQ(world.text(world.channels.field_values(channel, 2)), "{1, 2, 3, 5, 6}");
    // What was asked before a declaration is asked again behind it.
    world.declare("d", {world.read_all("8")});
    EXPECT_EQ(world.text(world.channels.field_values(channel, 0)), "{1, 2, 8}");
}

TEST(ChannelTable, fields_without_values_make_no_events) {
    World world;
    unsigned const before = world.next_event;
    world.declare("empty", {world.read_all(""), world.read_all("1")});
    EXPECT_EQ(world.next_event, before);
    world.declare("next", {world.read_all("1")});
    EXPECT_EQ(world.channels.event_name(before), "next.1");
    BitSet events;
    world.channels.insert_closure(world.channels.find("empty"), events);
    EXPECT_TRUE(events.empty());
}

TEST(ChannelTable, refuses_what_cannot_be_told_apart_or_counted) {
    World world;
    Value const data = world.store.find_name("data");
    EXPECT_EQ(Testing::outcome_of(world,
                                  [&] {
                                      world.declare("d", {{data, world.read("data.0")}});
                                      return Value();
                                  }),
              "a field cannot have the value 'data' and others that begin so");
    std::vector<Value> many;
    for (int number = 0; number < 70'000; ++number) {
        many.push_back(world.store.integer(number));
    }
    EXPECT_EQ(Testing::outcome_of(world,
                                  [&] {
                                      world.declare("d", {many, many});
                                      return Value();
                                  }),
              "the channel 'd' has too many events");
    EXPECT_FALSE(world.channels.find("d"));
}

} // namespace
} // namespace Calder::Values
