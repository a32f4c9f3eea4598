#include "state_space/machine/visited_states.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace Calder::StateSpace {
namespace {

using Words = std::vector<Word>;

StateNumber find_or_add(VisitedStates& states, Words const& words,
                        StateNumber max_states = no_state) {
    states.make_room(1);
    return states.find_or_add(
        words.data(), VisitedStates::hash(words.data(), static_cast<std::uint32_t>(words.size())),
        max_states);
}

Words words_of(VisitedStates const& states, StateNumber state) {
    return {states.words(state), states.words(state) + states.width()};
}

/// Few bits in each word, so that words come again and differ in one place only.
Words random_words(std::mt19937_64& random, std::uint32_t width, Word values) {
    Words words(width);
    for (std::uint32_t i = 0; i < width; ++i) {
        words[i] = (random() % values) << (random() % 2 == 0 ? 0U : 40U);
    }
    return words;
}

TEST(MachineVisitedStates, are_numbered_like_the_entries_of_a_map) {
    struct {
        std::uint32_t width;
        Word values;
    } const rows[] = {{1, 30'000}, {3, 20}};
    for (auto const& row : rows) {
        for (std::uint64_t seed = 0; seed < 2; ++seed) {
            std::mt19937_64 random(seed);
            VisitedStates states(row.width);
            std::map<Words, StateNumber> reference;
            for (unsigned i = 0; i < 80'000; ++i) {
                Words const words = random_words(random, row.width, row.values);
                if (random() % 1000 == 0) {
                    states.make_room(random() % 3000);
                }
                auto const number = static_cast<StateNumber>(reference.size());
                auto const known = reference.try_emplace(words, number).first;
                ASSERT_EQ(find_or_add(states, words), known->second)
                    << "width " << row.width << " seed " << seed << " step " << i;
            }
            ASSERT_GT(states.size(), 30'000U);
            ASSERT_EQ(states.size(), reference.size());
            for (auto const& [words, number] : reference) {
                ASSERT_EQ(words_of(states, number), words) << seed;
            }
        }
    }
}

TEST(MachineVisitedStates, stay_where_they_are_while_others_come) {
    VisitedStates states(3);
    std::vector<Word const*> places;
    for (Word i = 0; i < 5'000; ++i) {
        find_or_add(states, {i, 0, i});
        places.push_back(states.words(static_cast<StateNumber>(i)));
    }
    for (StateNumber state = 0; state < places.size(); ++state) {
        ASSERT_EQ(states.words(state), places[state]);
    }
}

TEST(MachineVisitedStates, are_no_more_than_wanted) {
    VisitedStates states(1);
    for (Word i = 0; i < 3'000; ++i) {
        ASSERT_EQ(find_or_add(states, {i * 7}, 2'000), i < 2'000 ? i : no_state);
    }
    EXPECT_EQ(states.size(), 2'000U);
    EXPECT_EQ(find_or_add(states, {7 * 1'999}, 2'000), 1'999U);
    EXPECT_EQ(find_or_add(states, {7 * 2'000}, 2'001), 2'000U);
}

TEST(MachineVisitedStates, keep_their_numbers_when_they_become_wider) {
    std::mt19937_64 random(7);
    VisitedStates states(1);
    std::map<Words, StateNumber> reference;
    for (std::uint32_t width : {1U, 2U, 5U}) {
        if (width > 1) {
            states.widen(width);
        }
        std::map<Words, StateNumber> wide;
        for (auto const& [words, number] : reference) {
            Words longer = words;
            longer.resize(width, 0);
            ASSERT_EQ(words_of(states, number), longer);
            wide.emplace(longer, number);
        }
        reference = std::move(wide);
        ASSERT_EQ(states.width(), width);
        for (unsigned i = 0; i < 9'000; ++i) {
            Words words = random_words(random, width, 4'000);
            auto const number = static_cast<StateNumber>(reference.size());
            auto const known = reference.try_emplace(words, number).first;
            ASSERT_EQ(find_or_add(states, words), known->second) << width;
        }
        for (auto const& [words, number] : reference) {
            ASSERT_EQ(find_or_add(states, words), number) << width;
        }
    }
}

TEST(MachineVisitedStates, may_all_have_the_same_hash) {
    // The first bucket, one in the middle, and the last one, which goes on in the first.
    for (std::uint64_t const hash :
         {std::uint64_t{0}, std::uint64_t{0x8000'0000'0000'0017}, ~std::uint64_t{0}}) {
        VisitedStates states(2);
        states.make_room(600);
        for (unsigned round = 0; round < 2; ++round) {
            for (Word i = 0; i < 500; ++i) {
                Words const words{i % 20, i / 20};
                states.prefetch_bucket(hash);
                states.prefetch_state(hash);
                ASSERT_EQ(states.find_or_add(words.data(), hash, no_state), i) << hash;
            }
        }
        EXPECT_EQ(states.size(), 500U);
    }
}

} // namespace
} // namespace Calder::StateSpace
