#include "state_space/memory.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>

#include <set>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

TEST(LtsBuilder, forgets_a_row_that_is_dropped_or_not_ended) {
    LtsBuilder builder;
    builder.add(3, 1);
    builder.end_row();
    builder.add(4, 1);
    builder.drop_row();
    builder.add(5, 0);
    builder.end_row();
    builder.add(6, 0);
    EXPECT_EQ(builder.transition_count(), 3U);
    LabelledTransitionSystem const lts = builder.finish(3);
    EXPECT_EQ(rows_of(lts), (Rows{{{3, 1}}, {{5, 0}}}));
    EXPECT_EQ(lts.state_count(), 3U);
    EXPECT_TRUE(lts.transitions(2).empty()) << "not explored";

    builder.add(7, 0);
    builder.end_row();
    EXPECT_EQ(rows_of(builder.finish(1)), (Rows{{{7, 0}}})) << "as new after finishing";
}

/// The naive answer: each pair once, where it came first.
Row without_duplicates(Row const& row) {
    Row result;
    std::set<Row::value_type> seen;
    for (auto const& transition : row) {
        if (seen.insert(transition).second) {
            result.push_back(transition);
        }
    }
    return result;
}

TEST(LtsBuilder, stores_a_transition_once_at_its_first_place) {
    // Widths around the one where a row stops being searched from its begin, and where the set of
    // a wide row grows.
    for (unsigned const width : {1U, 2U, 15U, 16U, 17U, 31U, 32U, 33U, 64U, 1000U}) {
        Row row;
        for (unsigned i = 0; i < width; ++i) {
            row.insert(row.end(), {{i % 7, i / 7}, {i % 7, i / 7}, {i % 7, i / 14}, {0, 0}});
        }
        Row const wanted = without_duplicates(row);
        // The same row again must not be taken for known, nor must a narrow one between.
        Rows const rows{row, {{0, 0}, {0, 0}}, row, row};
        EXPECT_EQ(rows_of(lts_of(rows)), (Rows{wanted, {{0, 0}}, wanted, wanted})) << width;
    }
}

TEST(LtsBuilder, has_room_for_rows_that_occupies_nothing_until_they_come) {
    constexpr std::size_t rows = std::size_t{1} << 20;
    LtsBuilder builder;
    for (StateNumber state = 0; state < rows; ++state) { // so that the arrays are mapped already
        builder.add_new(state, 0);
        builder.end_row();
    }
    std::uint64_t const before = resident_bytes();
    LtsBuilder::Room const room = builder.make_room(4 * rows, 4 * rows);
    EXPECT_LT(resident_bytes(), before + rows) << "of 64 MiB";
    LtsBuilder other;
    other.add_new(7, 1);
    other.end_row();
    for (std::size_t row = 0; row < 4 * rows; ++row) {
        builder.copy(other, {room.first_row + row, room.first_transition + row},
                     [](StateNumber target) { return target; });
    }
    LabelledTransitionSystem const lts = builder.finish(5 * rows);
    ASSERT_EQ(lts.transition_count(), 5 * rows);
    for (StateNumber state = 0; state < 5 * rows; ++state) {
        Transition const wanted = state < rows ? Transition{state, 0} : Transition{7, 1};
        ASSERT_EQ(lts.transitions(state).size(), 1U) << state;
        ASSERT_EQ(lts.transitions(state).front(), wanted) << state;
    }
}

} // namespace
} // namespace Calder::StateSpace
