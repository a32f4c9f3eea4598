#include "state_space/machine/run/team.h"
#include "state_space/machine/run/unordered_additions.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace Calder::StateSpace {
namespace {

using Words = std::vector<Word>;

constexpr unsigned threads = 4;

/// Rounds of few additions, which cross the ends of blocks and leave most numbers of a thread unused, and of many;
/// some are taken back.
TEST(MachineUnorderedAdditions, follow_the_states_that_were_there_or_are_taken_back) {
    std::mt19937 random(7);
    Team team(threads);
    for (std::uint32_t const width : {2U, 3U}) {
        VisitedStates states(width);
        UnorderedAdditions additions(states, threads);
        std::set<Words> wanted;
        for (unsigned round = 0; round < 200; ++round) {
            std::size_t const most = round % 50 == 49 ? 8'000 : threads * (1 + random() % 12);
            bool const is_taken_back = round % 5 == 3;
            std::vector<Words> words(most);
            for (Words& each : words) {
                each.resize(width);
                each[0] = random() % 300;
                each[width - 1] = Word{random() % 300} << 40;
            }
            std::vector<std::set<Words>> added(threads);
            std::atomic<bool> is_wrong = false;
            StateNumber const before = states.size();
            additions.begin(most, team);
            team.all([&](unsigned thread) { // each word by two of them
                for (std::size_t i = thread / 2; i < most; i += threads / 2) {
                    std::uint64_t const hash = VisitedStates::hash(words[i].data(), width);
                    auto const [state, is_new] =
                        additions.find_or_add(words[i].data(), hash, thread);
                    is_wrong = is_wrong || !additions.is_state(state, words[i].data());
                    if (is_new) {
                        is_wrong = is_wrong || !added[thread].insert(words[i]).second;
                    }
                }
            });
            ASSERT_FALSE(is_wrong) << round;
            if (is_taken_back) {
                additions.take_back();
            } else {
                additions.end();
                for (auto const& each : added) {
                    for (Words const& one : each) {
                        ASSERT_TRUE(wanted.insert(one).second) << round << ", added twice";
                    }
                }
            }
            ASSERT_EQ(states.size(), is_taken_back ? before : wanted.size()) << round;
            std::set<StateNumber> numbers;
            for (Words const& each : wanted) {
                StateNumber const number =
                    states.find_or_add(each.data(), VisitedStates::hash(each.data(), width), 0);
                ASSERT_LT(number, states.size()) << round;
                ASSERT_TRUE(states.is_state(number, each.data())) << round;
                numbers.insert(number);
            }
            ASSERT_EQ(numbers.size(), wanted.size()) << round;
            for (Words const& each : is_taken_back ? words : std::vector<Words>()) {
                bool const is_known =
                    states.find_or_add(each.data(), VisitedStates::hash(each.data(), width), 0) !=
                    no_state;
                ASSERT_EQ(is_known, wanted.count(each) > 0) << round;
            }
        }
        EXPECT_GT(wanted.size(), 20'000U);
    }
}

} // namespace
} // namespace Calder::StateSpace
