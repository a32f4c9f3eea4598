#include "state_space/deadlock.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>

namespace Calder::StateSpace {
namespace {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using namespace Testing;
using Trace = std::vector<unsigned>;

TEST(Deadlock, is_a_state_without_transitions_that_no_tick_accounts_for) {
    struct {
        char const* what;
        Rows rows;
        std::optional<StateNumber> state;
        Trace trace;
    } const rows[] = {
        {"the start", {{}}, 0, {}},
        {"a loop", {{{3, 0}}}, std::nullopt, {}},
        {"only a tick leads there", {{{tick, 1}}, {}}, std::nullopt, {}},
        {"only ticks, from several states",
         {{{3, 1}, {tick, 2}}, {{tick, 2}}, {}},
         std::nullopt,
         {}},
        {"tau leads there", {{{tau, 1}}, {}}, 1, {tau}},
        {"an event leads there", {{{3, 1}}, {{4, 2}}, {}}, 2, {3, 4}},
        {"a tick and an event", {{{tick, 1}, {3, 1}}, {}}, 1, {3}},
        {"an event and a tick", {{{3, 1}, {tick, 1}}, {}}, 1, {3}},
        {"a tick first, an event later",
         {{{tick, 1}, {3, 2}, {4, 3}}, {}, {{5, 0}}, {{6, 1}}},
         1,
         {4, 6}},
        {"loops on the way", {{{3, 0}, {4, 1}}, {{5, 1}, {6, 0}, {7, 2}}, {}}, 2, {4, 7}},
        {"a tick on the way", {{{tick, 1}}, {{3, 2}}, {}}, 2, {tick, 3}},
        {"the shortest of several",
         {{{3, 1}, {4, 2}}, {{3, 3}}, {{5, 4}}, {{3, 5}}, {}, {}},
         4,
         {4, 5}},
        {"by the first steps of states that are reached again",
         {{{3, 1}, {4, 2}}, {{5, 3}}, {{6, 3}, {7, 1}}, {{8, 4}}, {{9, 2}, {10, 5}}, {}},
         5,
         {3, 5, 8, 10}},
        // State 1 has the lowest number, yet takes two steps to enter without a tick.
        {"the shortest, though another has a lower number",
         {{{tick, 1}, {3, 2}, {4, 3}}, {}, {{5, 1}}, {}},
         3,
         {4}},
        {"by the first of two ways that are as short",
         {{{3, 1}, {4, 2}}, {{5, 3}}, {{6, 3}}, {}},
         3,
         {3, 5}},
    };
    for (auto const& row : rows) {
        std::optional<Deadlock> const found = find_deadlock(lts_of(row.rows));
        ASSERT_EQ(found.has_value(), row.state.has_value()) << row.what;
        if (found) {
            EXPECT_EQ(found->state, *row.state) << row.what;
            EXPECT_EQ(found->trace, row.trace) << row.what;
        }
    }
}

TEST(Deadlock, only_explored_states_count) {
    Rows const explored{{{3, 1}, {4, 2}}, {{3, 0}}};
    EXPECT_FALSE(find_deadlock(lts_of(explored, 3)).has_value());
    EXPECT_FALSE(find_deadlock(lts_of({}, 1)).has_value());
    EXPECT_FALSE(find_deadlock(lts_of({}, 0)).has_value());
    Rows const one_more{{{3, 1}, {4, 2}}, {{3, 0}}, {}};
    EXPECT_TRUE(find_deadlock(lts_of(one_more, 4)).has_value());
}

} // namespace
} // namespace Calder::StateSpace
