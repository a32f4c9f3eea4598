#include "state_space/bisimulation.h"
#include "tests/state_space/graph_terms.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

namespace Calder::StateSpace {
namespace {

using namespace Testing;

TEST(Bisimulation, tells_systems_apart_by_what_they_can_answer) {
    Rows const loop = {{{3, 0}}};
    Rows const ring = {{{3, 1}}, {{3, 2}}, {{3, 0}}};
    Rows const early = {{{3, 1}, {3, 2}}, {{4, 3}}, {{5, 3}}, {}};
    Rows const late = {{{3, 1}}, {{4, 2}, {5, 2}}, {}};
    Rows const doubled = {{{3, 1}, {3, 2}}, {{4, 3}}, {{4, 4}}, {}, {}};
    Rows const single = {{{3, 1}}, {{4, 2}}, {}};
    Rows const silent = {{{1, 1}}, {{3, 1}}};
    struct {
        char const* fault;
        Rows left;
        Rows right;
        bool bisimilar;
    } const rows[] = {
        {"unrolling changes a system", loop, ring, true},
        {"the moment of a choice is not seen", early, late, false},
        {"equal branches count twice", doubled, single, true},
        {"tau is passed over", silent, loop, false},
        {"one more step is not seen", {{{3, 1}}, {{3, 2}}, {}}, {{{3, 1}}, {}}, false},
        {"nothing differs from nothing", {{}}, {{}}, true},
        {"a system without states is asked for its start", {}, {}, true},
        {"a system without states is like one that does nothing", {}, {{}}, false},
        {"an event is taken for another", {{{3, 0}}}, {{{4, 0}}}, false},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(are_bisimilar(lts_of(row.left), lts_of(row.right)), row.bisimilar) << row.fault;
        EXPECT_EQ(are_bisimilar(lts_of(row.right), lts_of(row.left)), row.bisimilar) << row.fault;
    }
}

/// The largest bisimulation by its definition: all pairs, less those that cannot be answered.
std::set<std::pair<StateNumber, StateNumber>> largest_bisimulation(Rows const& rows) {
    std::set<std::pair<StateNumber, StateNumber>> related;
    auto const count = static_cast<StateNumber>(rows.size());
    for (StateNumber left = 0; left < count; ++left) {
        for (StateNumber right = 0; right < count; ++right) {
            related.emplace(left, right);
        }
    }
    auto const answers = [&](StateNumber left, StateNumber right) {
        return std::all_of(rows[left].begin(), rows[left].end(), [&](auto const& step) {
            return std::any_of(rows[right].begin(), rows[right].end(), [&](auto const& answer) {
                return answer.first == step.first &&
                       related.count({step.second, answer.second}) != 0;
            });
        });
    };
    while (std::erase_if(related, [&](auto const& pair) {
               return !answers(pair.first, pair.second) || !answers(pair.second, pair.first);
           }) != 0) {
    }
    return related;
}

RC_GTEST_PROP(BisimulationProperty, classes_are_those_of_the_definition, ()) {
    auto const count = *rc::gen::inRange<StateNumber>(1, 12);
    Rows rows(count);
    for (Row& row : rows) {
        row = *rc::gen::resize(4, rc::gen::container<Row>(rc::gen::pair(
                                      rc::gen::inRange(1U, 4U), rc::gen::inRange(0U, count))));
    }
    std::vector<StateNumber> const classes = bisimulation_classes(lts_of(rows));
    auto const related = largest_bisimulation(rows);
    std::set<StateNumber> const numbers(classes.begin(), classes.end());
    RC_ASSERT(*numbers.rbegin() == numbers.size() - 1);
    for (StateNumber left = 0; left < count; ++left) {
        for (StateNumber right = 0; right < count; ++right) {
            RC_ASSERT((classes[left] == classes[right]) == (related.count({left, right}) != 0));
        }
    }
}

TEST(Bisimulation, a_long_chain_is_refined_without_looking_at_all_of_it_again_and_again) {
    constexpr StateNumber length = 200'000;
    Rows rows(length);
    for (StateNumber state = 0; state + 1 < length; ++state) {
        rows[state] = {{3, state + 1}};
    }
    std::vector<StateNumber> const classes = bisimulation_classes(lts_of(rows));
    EXPECT_EQ(std::set<StateNumber>(classes.begin(), classes.end()).size(), length);
}

} // namespace
} // namespace Calder::StateSpace
