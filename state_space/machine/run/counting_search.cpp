#include "state_space/machine/run/counting_search.h"

#include <numeric>

namespace Calder::StateSpace {

CountingSearch::CountingSearch(RunOptions const& options, Cut const& cut)
    : m_max_states(options.max_states), m_most_plain_words(cut.most_plain_words),
      m_threads(options.threads) {
    m_workers.reserve(m_threads);
    for (unsigned thread = 0; thread < m_threads; ++thread) {
        m_workers.emplace_back(m_set.width());
    }
}

std::uint64_t CountingSearch::transition_count() const noexcept {
    return std::accumulate(
        m_workers.begin(), m_workers.end(), std::uint64_t{0},
        [](std::uint64_t sum, Worker const& each) { return sum + each.transitions; });
}

void CountingSearch::widen(std::uint32_t width) {
    if (m_tree && width <= m_tree->width()) {
        m_width = width;
        return;
    }
    auto tree = width > m_most_plain_words ? std::make_unique<StateTree>(width) : nullptr;
    std::uint32_t const kept_width = SearchJob::Form{width, tree.get()}.kept_width();
    auto const kept_anew = [&](Word const* kept) {
        std::vector<Word> words =
            m_tree ? m_tree->words(kept, m_width) : std::vector(kept, kept + m_width);
        words.resize(width);
        if (tree) {
            StateTree::Node const root = tree->root_of(words.data(), width);
            words.assign(root.begin(), root.end());
        }
        return words;
    };
    StateSet set(kept_width);
    set.make_room(size());
    m_set.for_each([&](Word const* kept) {
        std::vector<Word> const words = kept_anew(kept);
        set.find_or_add(words.data(), hash_of_words(words.data(), kept_width), no_state);
    });
    auto const list_anew = [&](StateList const& list) {
        StateList wide(kept_width);
        wide.make_room(list.size());
        list.for_each(0, list.size(), [&](Word const* kept) {
            wide.add(kept_anew(kept).data());
            return true;
        });
        return wide;
    };
    StateList level = list_anew(m_level);
    std::vector<StateList> found;
    for (Worker const& each : m_workers) {
        found.push_back(list_anew(each.found));
    }
    m_set.swap(set);
    m_level = std::move(level);
    for (std::size_t thread = 0; thread < m_workers.size(); ++thread) {
        m_workers[thread].found = std::move(found[thread]);
    }
    m_tree = std::move(tree);
    m_width = width;
}

bool CountingSearch::add_start(std::vector<Word> const& words) {
    std::vector<Word> kept = words;
    if (m_tree) {
        StateTree::Node const root = m_tree->root_of(words.data(), m_width);
        kept.assign(root.begin(), root.end());
    }
    m_set.make_room(1);
    m_level.make_room(1);
    if (m_set.find_or_add(kept.data(), hash_of_words(kept.data(), m_set.width()), m_max_states) !=
        StateSet::Found::added) {
        return false;
    }
    m_level.add(kept.data());
    return true;
}

void CountingSearch::begin_level(StateNumber first) {
    m_level.clear();
    for (Worker& each : m_workers) {
        m_level.take(each.found);
    }
    m_level_begin = first;
}

StateNumber CountingSearch::take_job() {
    Worker& owner = m_workers[0];
    m_set.make_room(owner.job.steps().size());
    return owner.look_up(m_set, [this](Word const* words, std::uint64_t hash) {
        return m_set.find_or_add(words, hash, m_max_states);
    });
}

/// Each addition waits in a list, too, of which every thread has some room left.
std::uint64_t CountingSearch::growth_bytes(std::uint64_t additions) const noexcept {
    return m_set.growth_bytes(additions) + additions * m_set.width() * sizeof(Word) +
           (m_tree ? m_tree->growth_bytes(additions) : 0);
}

std::uint64_t CountingSearch::round_bytes(std::uint64_t /*steps*/,
                                          std::uint64_t additions) const noexcept {
    return m_set.growth_bytes(additions) + additions * m_set.width() * sizeof(Word) +
           (m_tree ? m_tree->sharing_bytes(additions, size(), m_threads) : 0);
}

void CountingSearch::finish(Run& result) {
    result.state_bytes = m_set.memory_bytes() + (m_tree ? m_tree->memory_bytes() : 0);
}

} // namespace Calder::StateSpace
