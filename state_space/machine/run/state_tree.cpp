#include "state_space/machine/run/state_tree.h"

#include "state_space/machine/run/team.h"

namespace Calder::StateSpace {

namespace {

/// Wider ones would differ in too much.
constexpr std::uint32_t most_leaf_words = 8;

/// Of the nodes of sources: a megabyte, or those of one source.
constexpr std::size_t most_numbers = std::size_t{1} << 18;

/// What a job may add of a level.
constexpr std::uint64_t job_nodes = 4096;

std::uint32_t power(std::uint32_t base, unsigned exponent) {
    return exponent == 0 ? 1 : base * power(base, exponent - 1);
}

/// As many a state as there were, twice over, and a job's of each thread of which it is not known yet.
std::uint64_t room_for(NumberedKeys const& keys, std::uint64_t additions, std::uint64_t known,
                       unsigned threads) noexcept {
    return 2 * additions * keys.size() / known + threads * job_nodes;
}

} // namespace

/// As few levels as there can be.
unsigned StateTree::levels_for(std::uint32_t width) {
    unsigned levels = 1;
    while (std::uint64_t{power(branches, levels)} * most_leaf_words < width) {
        ++levels;
    }
    return levels;
}

StateTree::StateTree(std::uint32_t width)
    : m_levels(levels_for(width)), m_leaf_count(power(branches, m_levels)),
      m_first_leaf((m_leaf_count - 1) / (branches - 1)),
      m_leaves((width + m_leaf_count - 1) / m_leaf_count) {}

StateTree::Node StateTree::root_of(Word const* words, std::uint32_t width) {
    m_leaves.make_room(m_leaf_count);
    m_nodes.make_room(m_first_leaf);
    std::vector<Word> padded(words, words + width);
    padded.resize(this->width());
    std::vector<Number> numbers(place_count());
    for (std::uint32_t leaf = 0; leaf < m_leaf_count; ++leaf) {
        Word const* const key = &padded[std::size_t{leaf} * m_leaves.width()];
        numbers[m_first_leaf + leaf] = m_leaves.find_or_add(key, m_leaves.hash(key));
    }
    for (std::uint32_t place = m_first_leaf - 1; place > 0; --place) {
        Node const node = node_of(&numbers[first_below(place)]);
        numbers[place] = m_nodes.find_or_add(node.data(), m_nodes.hash(node.data()));
    }
    return node_of(&numbers[first_below(0)]);
}

std::vector<Word> StateTree::words(Word const* root, std::uint32_t width) const {
    std::vector<Number> numbers(place_count());
    std::vector<Word> words(this->width());
    split(root, width, numbers.data(), words.data());
    words.resize(width);
    return words;
}

Word StateTree::first_word(Word const* root) const noexcept {
    Number first = number(root, 0);
    for (unsigned level = 1; level < m_levels; ++level) {
        first = number(m_nodes.key(first), 0);
    }
    return *m_leaves.key(first);
}

/// The numbers of all nodes, by place, and the words; of what stands behind the last word, only what nodes before
/// that lead to, or nothing.
void StateTree::split(Word const* root, std::uint32_t width, Number* numbers,
                      Word* words) const noexcept {
    std::uint32_t const last_leaf = leaves_of(width) - 1;
    std::uint32_t leaves_below = m_leaf_count;
    for (std::uint32_t first = 0; first < m_first_leaf; first = first_below(first)) {
        for (std::uint32_t place = first; place <= first + last_leaf / leaves_below; ++place) {
            Word const* const node = place == 0 ? root : m_nodes.key(numbers[place]);
            for (std::uint32_t i = 0; i < branches; ++i) {
                numbers[first_below(place) + i] = number(node, i);
            }
        }
        leaves_below /= branches;
    }
    for (std::uint32_t leaf = 0; leaf <= last_leaf; ++leaf) {
        copy_words(m_leaves.key(numbers[m_first_leaf + leaf]),
                   &words[std::size_t{leaf} * m_leaves.width()], m_leaves.width());
    }
}

void StateTree::begin(Work& work) const noexcept {
    work.sources = 0;
    work.changes.clear(m_leaves.width());
}

Word const* StateTree::begin_source(Word const* root, std::uint32_t width, Steps& steps,
                                    Work& work) const {
    std::size_t const first = std::size_t{place_count()} * work.sources;
    if (work.numbers.size() < first + place_count()) {
        work.numbers.resize(2 * (first + place_count()));
    }
    work.words.resize(this->width());
    split(root, width, &work.numbers[first], work.words.data());
    work.changes.begin(work.sources++, work.words.data(), leaves_of(width), root, steps);
    return work.words.data();
}

bool StateTree::is_full(Work const& work) const noexcept {
    return std::size_t{work.sources} * place_count() > most_numbers;
}

void StateTree::join(Steps& steps, Work& work) {
    find_leaves(work);
    for (unsigned level = 1; level < m_levels; ++level) {
        go_up(work);
        find_nodes(work);
    }
    for (std::size_t place = 0; place < work.changed.size();) {
        std::uint32_t const step = work.changed[place].step;
        steps.set_words(step, node_above(work, place).data());
    }
}

void StateTree::find_leaves(Work& work) {
    std::vector<ChangedWords::Change> const& changes = work.changes.all();
    if (!m_is_shared) {
        m_leaves.make_room(changes.size());
        m_nodes.make_room(changes.size() * (m_levels - 1));
    }
    work.changed.clear();
    work.hashes.resize(changes.size());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        work.hashes[i] = m_leaves.hash(work.changes.words(i));
        m_leaves.prefetch(work.hashes[i]);
    }
    for (std::size_t i = 0; i < changes.size(); ++i) {
        work.changed.push_back({changes[i].source, changes[i].step, m_first_leaf + changes[i].leaf,
                                m_leaves.find_or_add(work.changes.words(i), work.hashes[i])});
    }
    if (!work.changes.are_sorted()) {
        std::sort(work.changed.begin(), work.changed.end(),
                  [](Work::Changed const& left, Work::Changed const& right) {
                      return left.step != right.step ? left.step < right.step
                                                     : left.place < right.place;
                  });
    }
}

/// The numbers of what was changed on a level above the leaves.
void StateTree::find_nodes(Work& work) {
    for (std::size_t i = 0; i < work.changed.size(); ++i) {
        work.changed[i].number = m_nodes.find_or_add(work.nodes[i].data(), work.hashes[i]);
    }
}

/// From what was changed on a level to what stands above that.
void StateTree::go_up(Work& work) const noexcept {
    work.nodes.resize(std::max(work.nodes.size(), work.changed.size()));
    std::size_t count = 0;
    for (std::size_t place = 0; place < work.changed.size(); ++count) {
        Work::Changed const each = work.changed[place];
        Node const node = node_above(work, place);
        work.nodes[count] = node;
        work.hashes[count] = m_nodes.hash(node.data());
        m_nodes.prefetch(work.hashes[count]);
        work.changed[count] = {each.source, each.step, above(each.place), 0};
    }
    work.changed.resize(count);
}

/// The node above a changed one, and above those of the next ones that it is above, too: they come in the place
/// of the source's. Goes on to what comes behind them.
StateTree::Node StateTree::node_above(Work const& work, std::size_t& place) const noexcept {
    Work::Changed const& first = work.changed[place];
    std::uint32_t const node = above(first.place);
    std::array<Number, branches> below;
    std::copy_n(&work.numbers[std::size_t{place_count()} * first.source + first_below(node)],
                branches, below.begin());
    do {
        below[branch(work.changed[place].place)] = work.changed[place].number;
        ++place;
    } while (place < work.changed.size() && work.changed[place].step == first.step &&
             above(work.changed[place].place) == node);
    return node_of(below.data());
}

std::uint64_t StateTree::sharing_bytes(std::uint64_t additions, std::uint64_t known,
                                       unsigned threads) const noexcept {
    return m_leaves.growth_bytes(room_for(m_leaves, additions, known, threads)) +
           m_nodes.growth_bytes(room_for(m_nodes, additions, known, threads));
}

void StateTree::begin_sharing(std::uint64_t additions, std::uint64_t known, Team& team) {
    m_leaves.make_room(room_for(m_leaves, additions, known, team.size()), &team);
    m_nodes.make_room(room_for(m_nodes, additions, known, team.size()), &team);
    m_is_shared = true;
}

} // namespace Calder::StateSpace
