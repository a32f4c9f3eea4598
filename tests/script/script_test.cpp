#include "tests/script/reading.h"

#include <gtest/gtest.h>

namespace Calder::Script {
namespace {

using ProcessCompiler::Session;
using Testing::script_of;

TEST(Script, events_are_numbered_in_the_order_of_their_declaration) {
    auto const script = script_of("P = think -> STOP\n"
                                  "channel think, eat\n"
                                  "channel up, down : {1..2}.{ack, 7}\n"
                                  "channel up\n");
    char const* const names[] = {"tau",        "tick",     "think",  "eat",        "up.1.ack",
                                 "up.1.7",     "up.2.ack", "up.2.7", "down.1.ack", "down.1.7",
                                 "down.2.ack", "down.2.7", "up"};
    Session const& session = script->session();
    ASSERT_EQ(session.number_bound(), std::size(names) + 1);
    for (unsigned number = 1; number <= std::size(names); ++number) {
        EXPECT_EQ(session.event_object(number)->name(), names[number - 1]);
    }
}

/// What `term` offers first, by the answer of its transitions.
std::string offered(Script const& script, std::string_view name) {
    BitSet events;
    script.find(name)->term->visit_transitions(script.processes(),
                                               [&](unsigned event, auto const&) {
                                                   events.insert(event);
                                                   return true;
                                               });
    return ProcessCompiler::Testing::text_of(script.session(),
                                             *script.session().event_set_object(events));
}

TEST(Script, sets_hold_what_they_say) {
    struct {
        char const* set;
        char const* events;
    } const rows[] = {
        {"{}", "{}"},
        {"{b, a, b}", "{a, b}"},
        {"{tick, up.0.x}", "{tick, up.0.x}"},
        {"{{a, b}}", "{a, b}"},
        {"{| a |}", "{a}"},
        {"{| up |}", "{up.0.x, up.0.y, up.1.x, up.1.y, up, up.z}"},
        {"{| up.1, b |}", "{b, up.1.x, up.1.y}"},
        {"{| up.1.x |}", "{up.1.x}"},
        {"{| up.z, tick |}", "{tick, up.z}"},
    };
    for (auto const& row : rows) {
        auto const script = script_of("channel a, b channel up : {0, 1}.{x, y} channel up "
                                      "channel up : {z} channel upper P = RUN(" +
                                      std::string(row.set) + ")");
        ASSERT_TRUE(script);
        EXPECT_EQ(offered(*script, "P"), row.events) << row.set;
    }
}

TEST(Script, a_name_is_what_it_names_unless_it_is_on_a_cycle) {
    auto const script = script_of("channel a, b\n"
                                  "START = a -> P [] LEAF [] ALIAS\n"
                                  "Q = b -> P [] LEAF\n"
                                  "P = a -> Q\n"
                                  "LEAF = b -> STOP\n"
                                  "ALIAS = LEAF\n"
                                  "SELF = a -> SELF\n");
    auto const at = [&](char const* name) -> Script::Definition const& {
        return *script->find(name);
    };
    // Replaced, and shared.
    EXPECT_EQ(at("LEAF").term, at("LEAF").body);
    EXPECT_EQ(at("ALIAS").term, at("LEAF").term);
    EXPECT_EQ(at("START").term->argument(1), at("LEAF").body);
    EXPECT_EQ(at("START").term->argument(2), at("LEAF").body);
    EXPECT_EQ(at("Q").body->argument(1), at("LEAF").body);
    // On a cycle, always the one reference.
    EXPECT_EQ(at("START").term->argument(0)->argument(0), at("P").term);
    EXPECT_EQ(at("Q").body->argument(0)->argument(0), at("P").term);
    EXPECT_EQ(at("P").body->argument(0), at("Q").term);
    EXPECT_EQ(at("SELF").body->argument(0), at("SELF").term);
    // The source knows these names only, in the order of the script, as the bodies.
    auto const& references = script->processes().references();
    std::string names;
    for (auto const& reference : references) {
        names += reference->name() + " ";
        EXPECT_EQ(script->find(reference->name())->term, reference);
        EXPECT_EQ(script->processes().process(*reference), script->find(reference->name())->body);
    }
    EXPECT_EQ(names, "Q P SELF ");
}

TEST(Script, lists_its_definitions_in_order_with_their_places) {
    auto const script = script_of("-- é\nB = A\n  A_1' = STOP A = B2 B2 = STOP\ntick = STOP");
    std::string text;
    for (Script::Definition const& definition : script->definitions()) {
        text += definition.name + "@" + std::to_string(definition.location.line) + ":" +
                std::to_string(definition.location.column) + "+" +
                std::to_string(definition.location.length) + " ";
        EXPECT_EQ(script->find(definition.name), &definition);
    }
    EXPECT_EQ(text, "B@2:1+1 A_1'@3:3+4 A@3:15+1 B2@3:22+2 tick@4:1+4 ");
    EXPECT_EQ(script->find("C"), nullptr);
    EXPECT_TRUE(script_of("")->definitions().empty());
}

} // namespace
} // namespace Calder::Script
