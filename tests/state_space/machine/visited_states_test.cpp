#include "state_space/machine/run/visited_states.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace Calder::StateSpace {
namespace {

using Words = std::vector<Word>;

/// Few values, so that words come again and differ in one place only.
Words random_words(std::mt19937_64& random, std::uint32_t width) {
    Words words(width);
    for (Word& word : words) {
        word = (random() % (width == 1 ? 30'000 : 40)) << (random() % 2 == 0 ? 0U : 40U);
    }
    return words;
}

TEST(MachineVisitedStates, are_numbered_like_the_entries_of_a_map_also_when_they_become_wider) {
    std::mt19937_64 random(7);
    VisitedStates states(1);
    std::map<Words, StateNumber> reference;
    for (std::uint32_t const width : {1U, 2U, 5U}) {
        std::map<Words, StateNumber> wide;
        for (auto const& [words, number] : reference) {
            Words longer = words;
            longer.resize(width, 0);
            wide.emplace(longer, number);
        }
        reference = std::move(wide);
        states.widen(width);
        ASSERT_EQ(states.width(), width);
        for (unsigned i = 0; i < 60'000; ++i) {
            Words const words = random_words(random, width);
            StateNumber const max_states = i % 100 == 0 ? states.size() : no_state;
            auto const known = reference.find(words);
            states.make_room(i % 1000 == 0 ? 3000 : 1);
            StateNumber const size = states.size();
            StateNumber const found = states.find_or_add(
                words.data(), VisitedStates::hash(words.data(), width), max_states);
            if (known != reference.end()) {
                ASSERT_EQ(found, known->second) << "width " << width << " step " << i;
            } else if (max_states == size) {
                ASSERT_EQ(found, no_state) << "one too many";
            } else {
                ASSERT_EQ(found, size) << "width " << width << " step " << i;
                reference.emplace(words, found);
            }
        }
        for (auto const& [words, number] : reference) {
            ASSERT_EQ(Words(states.words(number), states.words(number) + width), words);
        }
    }
}

TEST(MachineVisitedStates, may_all_have_the_same_hash) {
    // The first bucket, one in the middle, and the last one, which goes on in the first.
    for (std::uint64_t const hash :
         {std::uint64_t{0}, std::uint64_t{0x8000'0000'0000'0017}, ~std::uint64_t{0}}) {
        VisitedStates states(2);
        states.make_room(600);
        for (unsigned i = 0; i < 1000; ++i) {
            Words const words{i % 20, i % 500 / 20};
            states.prefetch_bucket(hash);
            states.prefetch_state(hash);
            ASSERT_EQ(states.find_or_add(words.data(), hash, no_state), i % 500) << hash;
        }
    }
}

} // namespace
} // namespace Calder::StateSpace
