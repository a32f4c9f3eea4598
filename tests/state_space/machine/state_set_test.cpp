#include "state_space/machine/run/row_count.h"
#include "state_space/machine/run/state_list.h"
#include "state_space/machine/run/state_set.h"
#include "state_space/machine/run/team.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace Calder::StateSpace {
namespace {

using Random = std::mt19937_64;
using Words = std::vector<Word>;

/// Few enough bits that most come again; the upper bits of a word count, too.
Words random_words(Random& random, std::uint32_t width, unsigned bits) {
    Words words(width);
    for (Word& word : words) {
        word = (random() & ((Word{1} << bits) - 1)) * 0x1000'0000'0001;
    }
    return words;
}

/// Words that have a hash of which the set makes something else.
Words words_of_hash(Random& random, std::uint32_t width, std::uint64_t hash) {
    Words words(width);
    for (std::uint32_t i = 1; i < width; ++i) {
        words[i] = random() % 4;
    }
    words[0] = first_of_words(words.data() + 1, hash, width);
    return words;
}

std::set<Words> contents(StateSet const& set) {
    std::set<Words> all;
    set.for_each([&](Word const* words) { all.emplace(words, words + set.width()); });
    return all;
}

TEST(MachineWordHash, and_the_other_words_tell_the_first) {
    Random random(1);
    for (std::uint32_t width = 1; width < 6; ++width) {
        for (unsigned i = 0; i < 1'000; ++i) {
            Words const words = random_words(random, width, 1 + i % 16);
            std::uint64_t const hash = hash_of_words(words.data(), width);
            ASSERT_EQ(first_of_words(words.data() + 1, hash, width), words[0]) << width;
        }
    }
}

TEST(MachineStateSet, has_what_was_added_however_it_grew) {
    Random random(2);
    for (std::uint32_t width = 1; width < 5; ++width) {
        for (StateNumber const limit : {no_state, 3'000U}) {
            StateSet set(width);
            std::set<Words> wanted;
            for (unsigned i = 0; i < 20'000; ++i) {
                Words const words = i % 50 == 0 ? words_of_hash(random, width, i / 50 % 3)
                                                : random_words(random, width, 14 / width);
                std::uint64_t const hash = hash_of_words(words.data(), width);
                bool const is_known = wanted.count(words) > 0;
                set.make_room(1 + i % 7);
                StateSet::Found const found = set.find_or_add(words.data(), hash, limit);
                if (is_known) {
                    ASSERT_EQ(found, StateSet::Found::known) << width << ' ' << i;
                } else if (wanted.size() == limit) {
                    ASSERT_EQ(found, StateSet::Found::one_too_many) << width << ' ' << i;
                } else {
                    ASSERT_EQ(found, StateSet::Found::added) << width << ' ' << i;
                    wanted.insert(words);
                }
            }
            EXPECT_GE(wanted.size(), 3'000U) << width;
            EXPECT_EQ(set.size(), wanted.size()) << width;
            EXPECT_EQ(contents(set), wanted) << width;
        }
    }
}

/// Hashes as the set takes them for its groups: those of many groups in one, and those of the last group go on in the
/// first. There they stand when it grows.
TEST(MachineStateSet, finds_states_that_stand_far_behind_their_group) {
    struct {
        char const* what;
        std::uint64_t first_hash;
        std::uint64_t step;
    } const rows[] = {{"all in the first group", 0x100, 1},
                      {"all in one in the middle", 0x7FFF'FFFF'0000'0100, 1},
                      {"all in the last group", 0xFFFF'FFFF'0000'0100, 1},
                      {"the last groups", 0xFFF0'0000'0000'0100, 0x1'0000'0000'000},
                      {"lower halves as of what is free", 0x0000'0001'0000'0000, 0x1'0000'0000},
                      {"lower halves that are the same", 0x0000'0001'1234'5678, 0x1'0000'0000}};
    for (auto const& row : rows) {
        for (std::uint32_t const width : {1U, 3U}) {
            Team team(3);
            StateSet set(width);
            std::set<Words> wanted;
            for (unsigned i = 0; i < 400; ++i) {
                Words words(width, 5);
                std::uint64_t const hash = row.first_hash + i * row.step;
                words[0] = first_of_words(words.data() + 1, hash, width);
                set.make_room(i % 100 == 99 ? 3 * i : 1, i % 2 == 0 ? nullptr : &team);
                ASSERT_EQ(set.find_or_add(words.data(), hash, no_state), StateSet::Found::added)
                    << row.what << ' ' << i;
                wanted.insert(words);
            }
            for (Words const& words : wanted) {
                ASSERT_EQ(set.find_or_add(words.data(), hash_of_words(words.data(), width), 0),
                          StateSet::Found::known)
                    << row.what;
            }
            EXPECT_EQ(contents(set), wanted) << row.what;
        }
    }
}

/// All threads add the same states, in an order of their own.
TEST(MachineStateSet, of_several_threads_one_adds_each_state) {
    constexpr unsigned threads = 4;
    for (std::uint32_t const width : {1U, 2U, 4U}) {
        Team team(threads);
        StateSet set(width);
        for (unsigned const states :
             {30U, 3'000U, 300'000U}) { // at last large enough to grow by all threads
            std::vector<std::vector<StateNumber>> added(threads);
            set.make_room(states, &team);
            StateNumber const before = set.size();
            team.all([&](unsigned thread) {
                for (StateNumber i = 0; i < states; ++i) {
                    StateNumber const number = (i * 7 + thread * 11) % states;
                    Words words(width, number);
                    std::uint64_t hash = hash_of_words(words.data(), width);
                    if (number % 1000 == 13) { // an unusual one
                        hash = number / 1000 % 2;
                        words[0] = first_of_words(words.data() + 1, hash, width);
                    }
                    if (set.find_or_add_shared(words.data(), hash) == StateSet::Found::added) {
                        added[thread].push_back(number);
                    }
                }
            });
            std::set<StateNumber> all;
            std::size_t count = 0;
            for (auto const& each : added) {
                all.insert(each.begin(), each.end());
                count += each.size();
            }
            EXPECT_EQ(all.size(), count) << width;
            set.note_additions(count);
            EXPECT_EQ(set.size(), before + count) << width;
            EXPECT_EQ(contents(set).size(), set.size()) << width;
        }
        EXPECT_GE(set.size(), width == 1 ? 299'000U : 300'000U) << width;
    }
}

TEST(MachineStateList, keeps_places_when_it_takes_other_lists) {
    Random random(3);
    for (std::uint32_t const width : {1U, 3U}) {
        StateList level(width);
        std::vector<StateList> found;
        std::vector<Words> wanted;
        for (unsigned thread = 0; thread < 5; ++thread) {
            StateList& list = found.emplace_back(width);
            unsigned const count = thread == 2 ? 0 : 1U << (3 * thread);
            for (unsigned i = 0; i < count; ++i) {
                list.make_room(1 + i % 40);
                list.add(wanted.emplace_back(random_words(random, width, 20)).data());
            }
        }
        for (StateList& each : found) {
            level.take(each);
            EXPECT_EQ(each.size(), 0U);
        }
        ASSERT_EQ(level.size(), wanted.size());
        for (std::size_t place = 0; place < wanted.size(); ++place) {
            ASSERT_TRUE(are_equal_words(level.words(place), wanted[place].data(), width)) << place;
        }
        for (auto const& [first, last] :
             {std::pair{0U, 9U}, {5U, 4'000U}, {600U, 601U}, {7U, 7U}}) {
            std::size_t place = first;
            level.for_each(first, last, [&](Word const* words) {
                EXPECT_TRUE(are_equal_words(words, wanted[place].data(), width));
                return ++place < 3'000;
            });
            EXPECT_EQ(place, std::min(last, 3'000U));
        }
    }
}

} // namespace
} // namespace Calder::StateSpace
