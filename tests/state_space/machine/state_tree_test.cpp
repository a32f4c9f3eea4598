#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run/team.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace Calder::StateSpace {
namespace {

using Words = std::vector<Word>;
using Random = std::mt19937_64;

/// Few values, so that parts of states come again.
Words random_words(Random& random, std::uint32_t width) {
    Words words(width);
    for (Word& word : words) {
        word = random() % 3 << (random() % 2 == 0 ? 0U : 63U);
    }
    return words;
}

/// Of one word, of few, just as many as there is room for on a level, and one more.
constexpr std::uint32_t widths[] = {1, 2, 3, 4, 5, 7, 8, 9, 31, 32, 33, 40, 127, 128, 129, 700};

TEST(MachineStateTree, tells_states_apart_and_gives_them_back) {
    Random random(11);
    for (std::uint32_t const width : widths) {
        StateTree tree(width);
        ASSERT_GE(tree.width(), width);
        std::map<StateTree::Node, Words> known;
        std::map<Words, StateTree::Node> roots;
        Words words = random_words(random, width);
        for (unsigned i = 0; i < 300; ++i) {
            words[random() % width] = random() % 3; // a neighbour, or the same
            StateTree::Node const root = tree.root_of(words.data(), width);
            ASSERT_EQ(tree.words(root.data(), width), words) << width;
            ASSERT_EQ(tree.first_word(root.data()), words[0]) << width;
            ASSERT_EQ(known.emplace(root, words).first->second, words) << "one root of two states";
            ASSERT_EQ(roots.emplace(words, root).first->second, root) << "two roots of one state";
        }
    }
}

/// Steps as SuccessorTable tells of them, in any order and in the same place twice, with the states that they
/// lead to.
class RandomSteps {
  public:
    RandomSteps(Random& random, StateTree& tree, std::uint32_t width)
        : m_random(random), m_tree(tree), m_width(width) {}

    void begin() {
        m_tree.begin(m_work);
        m_steps.clear(StateTree::node_words);
        m_wanted.clear();
    }
    void add_source() {
        Words const source = random_words(m_random, m_width);
        StateTree::Node const root = m_tree.root_of(source.data(), m_width);
        Word const* const words = m_tree.begin_source(root.data(), m_width, m_steps, m_work);
        EXPECT_EQ(Words(words, words + m_width), source);
        for (std::size_t steps = m_random() % 5; steps > 0; --steps) {
            m_work.changes.make_room(1);
            m_random() % 4 == 0 ? add_other() : add_changed(source);
        }
    }
    void expect_joined() {
        m_tree.join(m_steps, m_work);
        ASSERT_EQ(m_steps.size(), m_wanted.size());
        for (std::size_t step = 0; step < m_wanted.size(); ++step) {
            StateTree::Node const root = m_tree.root_of(m_wanted[step].data(), m_width);
            ASSERT_TRUE(std::equal(root.begin(), root.end(), m_steps.words(step)))
                << "width " << m_width << ", step " << step;
        }
    }

  private:
    void add_changed(Words successor) {
        m_work.changes.begin_step(3);
        for (std::size_t changes = m_random() % 6; changes > 0; --changes) {
            auto const word = static_cast<std::uint32_t>(m_random() % m_width);
            Word const difference = m_random() % 3 - 1;
            successor[word] += difference;
            m_work.changes.change(word, difference);
        }
        m_wanted.push_back(std::move(successor));
    }
    void add_other() {
        m_wanted.push_back(random_words(m_random, m_width));
        Word* const words = m_work.changes.begin_other(3);
        std::copy(m_wanted.back().begin(), m_wanted.back().end(), words);
        m_work.changes.end_other();
    }

    Random& m_random;
    StateTree& m_tree;
    std::uint32_t m_width;
    StateTree::Work m_work;
    Steps m_steps;
    std::vector<Words> m_wanted;
};

TEST(MachineStateTree, joins_what_steps_change_to_what_the_whole_states_give) {
    Random random(12);
    for (std::uint32_t const width : widths) {
        StateTree tree(width);
        RandomSteps steps(random, tree, width);
        for (unsigned job = 0; job < 30; ++job) {
            steps.begin();
            for (std::size_t sources = random() % 9; sources > 0; --sources) {
                steps.add_source();
            }
            steps.expect_joined();
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

/// Whoever asks for much at once gets a table that is many times as large.
TEST(MachineNumberedKeys, say_before_they_grow_by_how_much) {
    for (std::uint64_t const additions : {1U, 1'023U, 1'025U, 50'000U, 3'000'000U}) {
        NumberedKeys keys(2);
        VisitedStates states(2);
        for (unsigned time = 0; time < 2; ++time) { // of an empty table, and of one that has room
            std::uint64_t const of_keys = 2 * sizeof(Word) * additions;
            std::uint64_t const keys_before = keys.memory_bytes();
            std::uint64_t const keys_announced = keys.growth_bytes(additions);
            keys.make_room(additions);
            std::uint64_t const keys_grew = keys.memory_bytes() - keys_before + of_keys;
            EXPECT_LE(keys_grew, keys_announced) << additions;
            EXPECT_LE(keys_announced, 2 * keys_grew + 8'192) << additions;
            std::uint64_t const states_before = states.memory_bytes();
            std::uint64_t const states_announced = states.growth_bytes(additions);
            states.make_room(additions);
            EXPECT_EQ(states.memory_bytes() - states_before + of_keys, states_announced)
                << additions;
        }
    }
}

/// A table is made larger long before it is full: room is made for many at once.
TEST(MachineNumberedKeys, take_no_more_than_they_tell_before) {
    constexpr std::uint32_t width = 2;
    for (unsigned const at_once : {1U, 100U, 5'000U}) {
        NumberedKeys keys(width);
        std::array<Word, width> key{};
        while (keys.size() < 100'000) {
            std::uint64_t const most = keys.memory_bytes() + keys.growth_bytes(at_once);
            for (unsigned i = 0; i < at_once; ++i) {
                ++key[0];
                keys.make_room(1);
                keys.find_or_add(key.data(), keys.hash(key.data()));
            }
            if (keys.size() > 10'000) { // before, a table is hardly a page
                ASSERT_LE(keys.memory_bytes(), most) << keys.size() << " keys";
            }
        }
    }
}

TEST(MachineReachedStates, keep_their_numbers_when_they_become_wider) {
    Random random(13);
    for (std::uint32_t const most_plain_words : {0U, 1U, 4U, 1'000U}) {
        ReachedStates states(most_plain_words);
        std::map<Words, StateNumber> reference;
        for (std::uint32_t const width : {1U, 2U, 5U, 6U, 40U, 300U}) {
            states.widen(width);
            ASSERT_EQ(states.width(), width);
            std::map<Words, StateNumber> wide;
            for (auto& [words, number] : reference) {
                Words longer = words;
                longer.resize(width);
                wide.emplace(std::move(longer), number);
            }
            reference = std::move(wide);
            for (unsigned i = 0; i < 200; ++i) {
                Words const words = random_words(random, width);
                auto const next = static_cast<StateNumber>(reference.size());
                StateNumber const number = reference.emplace(words, next).first->second;
                ASSERT_EQ(states.find_or_add(words.data(), no_state), number) << width;
            }
            for (auto const& [words, number] : reference) {
                ASSERT_EQ(states.words(number), words) << width;
                ASSERT_EQ(states.first_word(number), words[0]) << width;
            }
        }
    }
}

/// All keys, looked up by all threads at once.
std::vector<std::vector<NumberedKeys::Number>> look_up(NumberedKeys& keys, Team& team, Word count,
                                                       std::atomic<unsigned>& failures) {
    std::vector<std::vector<NumberedKeys::Number>> found(team.size());
    team.all([&](unsigned thread) {
        for (Word i = 0; i < count; ++i) {
            Word const key[] = {i * 7 % count, 1};
            try {
                found[thread].push_back(keys.find_or_add(key, keys.hash(key)));
            } catch (std::bad_alloc const&) {
                ++failures;
            }
        }
    });
    return found;
}

TEST(MachineNumberedKeys, of_all_threads_are_the_same) {
    constexpr Word count = 20'000;
    Team team(4);
    NumberedKeys keys(2);
    std::atomic<unsigned> failures = 0;
    keys.make_room(5'000, &team);
    look_up(keys, team, count, failures);
    EXPECT_GT(failures, 0U) << "there is no room for all";
    EXPECT_EQ(keys.size(), 5'000U);
    keys.make_room(count, &team);
    failures = 0;
    auto const found = look_up(keys, team, count, failures);
    EXPECT_EQ(failures, 0U);
    EXPECT_EQ(keys.size(), count);
    std::vector<bool> numbers(count);
    for (Word i = 0; i < count; ++i) {
        NumberedKeys::Number const number = found[0][i];
        ASSERT_EQ(keys.key(number)[0], i * 7 % count);
        ASSERT_FALSE(numbers[number]);
        numbers[number] = true;
    }
    for (auto const& each : found) {
        ASSERT_EQ(each, found[0]);
    }
}

} // namespace
} // namespace Calder::StateSpace
