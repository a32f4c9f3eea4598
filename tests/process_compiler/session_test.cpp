#include "process_compiler/session.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::text_of;

TEST(Session, numbers_events_from_three_in_the_order_of_declaration) {
    Session session;
    EXPECT_EQ(session.declare_event("b"), 3U);
    EXPECT_EQ(session.declare_event("a.1"), 4U);
    EXPECT_EQ(session.declare_event("b"), 3U) << "declared again";
    struct {
        char const* name;
        unsigned number;
    } const rows[] = {{"tau", tau}, {"tick", tick}, {"b", 3}, {"a.1", 4}, {"a", no_event}};
    for (auto const& row : rows) {
        EXPECT_EQ(session.event_number(Event(row.name)), row.number) << row.name;
        if (row.number != no_event) {
            EXPECT_EQ(text_of(session, *session.event_object(row.number)), row.name);
        }
    }
    EXPECT_EQ(session.event_object(no_event), nullptr);
    EXPECT_EQ(session.event_object(5), nullptr);
    EXPECT_EQ(session.number_bound(), 5U);
}

TEST(Session, converts_sets_and_leaves_out_what_it_does_not_know) {
    Session session;
    session.declare_event("a");
    session.declare_event("b.1");
    EventSet const given({new Event("b.1"), new Event("unheard"), new Event("tick")});
    EXPECT_EQ(session.event_number_set(given), (BitSet{tick, 4}));

    struct {
        BitSet set;
        char const* text;
    } const rows[] = {
        {{}, "{}"}, {{4, 3}, "{a, b.1}"}, {{tick, 4}, "{tick, b.1}"}, {{0, 3, 77}, "{a}"}};
    for (auto const& row : rows) {
        EXPECT_EQ(text_of(session, *session.event_set_object(row.set)), row.text);
    }
}

} // namespace
} // namespace Calder::ProcessCompiler
