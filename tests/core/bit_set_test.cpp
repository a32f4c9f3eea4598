#include "core/bit_set.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <vector>

namespace Calder {
namespace {

BitSet bits_of(std::vector<unsigned> const& events) {
    BitSet bits;
    for (unsigned const event : events) {
        bits.insert(event);
    }
    return bits;
}

std::vector<unsigned> any_events() {
    return *rc::gen::container<std::vector<unsigned>>(rc::gen::inRange(0U, 300U));
}

RC_GTEST_PROP(BitSetProperty, behaves_like_a_sorted_set, ()) {
    std::vector<unsigned> const events = any_events();
    std::set<unsigned> const model(events.begin(), events.end());
    BitSet const bits = bits_of(events);

    RC_ASSERT(std::vector<unsigned>(bits.begin(), bits.end()) ==
              std::vector<unsigned>(model.begin(), model.end()));
    RC_ASSERT(bits.size() == model.size());
    RC_ASSERT(bits.empty() == model.empty());
    for (unsigned event = 0; event < 320; ++event) {
        RC_ASSERT(bits.member(event) == (model.count(event) != 0));
    }
}

RC_GTEST_PROP(BitSetProperty, union_difference_and_equality_follow_the_sets, ()) {
    std::vector<unsigned> const left = any_events();
    std::vector<unsigned> const right = any_events();
    std::set<unsigned> model(left.begin(), left.end());
    std::set<unsigned> const right_model(right.begin(), right.end());

    RC_ASSERT((bits_of(left) == bits_of(right)) == (model == right_model));
    RC_ASSERT((bits_of(left) != bits_of(right)) == (model != right_model));

    std::vector<unsigned> difference;
    std::set_difference(model.begin(), model.end(), right_model.begin(), right_model.end(),
                        std::back_inserter(difference));
    RC_ASSERT(bits_of(left).without(bits_of(right)) == bits_of(difference));

    BitSet joined = bits_of(left);
    joined.setunion(bits_of(right));
    model.insert(right.begin(), right.end());
    RC_ASSERT(std::vector<unsigned>(joined.begin(), joined.end()) ==
              std::vector<unsigned>(model.begin(), model.end()));
}

TEST(BitSet, folds_its_words_by_exclusive_or) {
    struct {
        BitSet set;
        std::uint64_t folded;
    } const rows[] = {
        {{}, 0}, {{2}, 4}, {{0, 63}, 0x8000000000000001}, {{3, 64 + 3}, 0}, {{1, 64 + 2, 640}, 7},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.set.folded_words(), row.folded);
    }
}

} // namespace
} // namespace Calder
