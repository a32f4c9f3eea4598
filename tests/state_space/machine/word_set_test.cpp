#include "state_space/machine/run/team.h"
#include "state_space/machine/run/word_list.h"
#include "state_space/machine/run/word_set.h"
#include "tests/state_space/counted_allocation.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace Calder::StateSpace {
namespace {

using Hash = WordSet::Hash;
using Found = WordSet::Found;

/// What it says of all of these is that they are known, and of any other that there is no room for it.
void expect_contents(WordSet& set, std::set<Hash> const& wanted, std::string const& what) {
    ASSERT_EQ(set.size(), wanted.size()) << what;
    for (Hash const hash : wanted) {
        ASSERT_EQ(set.find_or_add(hash, 0), Found::known) << what << ' ' << hash;
        if (wanted.count(hash + 1) == 0) {
            ASSERT_EQ(set.find_or_add(hash + 1, 0), Found::one_too_many) << what << ' ' << hash;
        }
    }
}

/// Few enough that most come again, the one that means a free place among them.
TEST(MachineWordSet, has_what_was_added_however_it_grew) {
    std::mt19937_64 random(2);
    for (StateNumber const limit : {no_state, 3'000U, 1U}) {
        WordSet set;
        std::set<Hash> wanted;
        for (unsigned i = 0; i < 30'000; ++i) {
            Hash const hash = random() % 10'000 * 0x0006'8DB8'BAC7'10CC;
            bool const is_known = wanted.count(hash) > 0;
            set.make_room(1 + i % 7);
            Found const found = set.find_or_add(hash, limit);
            if (is_known) {
                ASSERT_EQ(found, Found::known) << i;
            } else if (wanted.size() == limit) {
                ASSERT_EQ(found, Found::one_too_many) << i;
            } else {
                ASSERT_EQ(found, Found::added) << i;
                wanted.insert(hash);
            }
        }
        EXPECT_TRUE(limit < no_state || wanted.count(0) == 1) << "the free place was not tried";
        expect_contents(set, wanted, "at random");
    }
}

/// Those of many groups in one; and those of the last group go on in the first. There they stand when it grows.
TEST(MachineWordSet, finds_hashes_that_stand_far_behind_their_group) {
    struct {
        char const* what;
        Hash first;
        Hash step;
    } const rows[] = {{"all in the first group", 0x100, 2},
                      {"all in one in the middle", 0x7FFF'FFFF'0000'0100, 2},
                      {"all in the last group", 0xFFFF'FFFF'0000'0100, 2},
                      {"in the last groups", 0xFFF0'0000'0000'0100, 0x0000'0100'0000'0000},
                      {"lower halves as of a free place", 0x0000'0001'0000'0000, 0x1'0000'0000},
                      {"lower halves that are the same", 0xF000'0001'1234'5678, 0x1'0000'0000}};
    for (auto const& row : rows) {
        for (bool const is_shared : {false, true}) {
            Team team(3);
            WordSet set;
            std::set<Hash> wanted;
            for (unsigned i = 0; i < 3'000; ++i) {
                Hash const hash = row.first + i * row.step;
                set.make_room(i % 100 == 99 ? 3 * i : 1, is_shared ? &team : nullptr);
                if (is_shared) {
                    ASSERT_EQ(set.find_or_add_shared(hash), Found::added) << row.what << ' ' << i;
                    set.note_additions(1);
                } else {
                    ASSERT_EQ(set.find_or_add(hash, no_state), Found::added)
                        << row.what << ' ' << i;
                }
                wanted.insert(hash);
            }
            expect_contents(set, wanted, row.what);
        }
    }
}

/// All threads add the same hashes, each some places before the next one, or all at the same place, where they
/// are in each other's way; in the end so many that all of them make room.
TEST(MachineWordSet, of_several_threads_one_adds_each_hash) {
    constexpr unsigned threads = 4;
    Team team(threads);
    WordSet set;
    std::set<Hash> wanted;
    for (unsigned const count : {30U, 3'000U, 300'000U}) {
        std::vector<std::vector<Hash>> added(threads);
        set.make_room(count, &team);
        team.all([&](unsigned thread) { // the first two in step
            for (unsigned i = 0; i < count; ++i) {
                Hash const hash = Hash{(i * 7 + thread / 2 * 11) % count} * 0x9E37'79B9'7F4A'7C15;
                if (set.find_or_add_shared(hash) == Found::added) {
                    added[thread].push_back(hash);
                }
            }
        });
        std::size_t const before = wanted.size();
        std::size_t all = 0;
        for (auto const& each : added) {
            wanted.insert(each.begin(), each.end());
            all += each.size();
        }
        EXPECT_EQ(wanted.size(), before + all) << "one was added twice";
        EXPECT_EQ(wanted.size(), count);
        set.note_additions(all);
        expect_contents(set, wanted, std::to_string(count));
    }
}

/// However its allocations fail, also those of the work that it gives to a team.
TEST(MachineWordSet, is_as_before_where_it_cannot_grow) {
    if (!Testing::allocations_can_fail()) {
        GTEST_SKIP() << Testing::why_not_counted;
    }
    Team team(2);
    WordSet set;
    std::set<Hash> wanted;
    set.make_room(100'000);
    for (unsigned i = 1; i <= 100'000; ++i) {
        wanted.insert(i * 0x9E37'79B9'7F4A'7C15);
        set.find_or_add(i * 0x9E37'79B9'7F4A'7C15, no_state);
    }
    bool fails = true;
    for (std::size_t number = 1; fails; ++number) {
        std::uint64_t const before = set.memory_bytes();
        Testing::FailingAllocation const failing(number);
        try {
            set.make_room(1'000'000, &team);
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(set.memory_bytes(), before) << number;
        }
        fails = failing.has_failed();
    }
    expect_contents(set, wanted, "grown after that");
}

TEST(MachineWordList, keeps_places_when_it_takes_other_lists) {
    WordList level;
    std::vector<WordList> found(5);
    Word last_word = 0;
    for (unsigned thread = 0; thread < 5; ++thread) {
        for (unsigned i = 0; i < (thread == 2 ? 0 : 1U << (3 * thread)); ++i) {
            found[thread].make_room(1 + i % 40);
            found[thread].add(last_word++);
        }
    }
    for (WordList& each : found) {
        level.take(each);
        EXPECT_EQ(each.size(), 0U);
    }
    ASSERT_EQ(level.size(), last_word);
    for (Word place = 0; place < last_word; ++place) {
        ASSERT_EQ(level[place], place);
    }
    for (auto const& [first, last] : {std::pair{0U, 9U}, {5U, 4'000U}, {600U, 601U}, {7U, 7U}}) {
        Word place = first;
        level.for_each(first, last, [&](Word const* word) {
            EXPECT_EQ(*word, place);
            return ++place < 3'000;
        });
        EXPECT_EQ(place, std::min(last, 3'000U));
    }
}

} // namespace
} // namespace Calder::StateSpace
