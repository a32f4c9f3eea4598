#include "refinement/pair_search.h"

#include "process_compiler/event_numbers.h"
#include "refinement/loops.h"
#include "state_space/memory.h"

#include <algorithm>

namespace Calder::Refinement {

using ProcessCompiler::tau;
using ProcessCompiler::tick;
using StateSpace::no_state;

namespace {

/// How many steps ahead memory is asked for: first the bucket, then the pair that it names.
constexpr std::size_t bucket_distance = 32;

/// Of one batch: what stays in a core's own cache.
constexpr std::size_t steps_wanted = 4096;

/// So many pairs more cost less than starting does.
constexpr StateNumber least_silent_pairs = 1024;

} // namespace

PairSearch::PairSearch(Side& side, Observer& observer, SearchMonitor& monitor)
    : m_side(side), m_observer(observer), m_monitor(monitor),
      m_pairs(side.width(), side.spare_bits()) {}

std::optional<Finding> PairSearch::run(StateNumber most_depth) {
    NodeNumber const start = m_observer.start();
    if (!is_node(start)) {
        return std::nullopt;
    }
    add_start(start);
    while (m_explored < m_pairs.size() && m_depth < most_depth) {
        if (auto found = explore_level()) {
            return find_loop_before(std::move(*found));
        }
        if (m_pairs.size() / 2 >= m_searched_for_loops) {
            m_searched_for_loops = m_pairs.size();
            if (auto loop = find_loop()) {
                return find_loop_before(std::move(*loop));
            }
        }
    }
    return find_loop();
}

void PairSearch::add_start(NodeNumber node) {
    std::vector<Word> const state = m_side.start();
    fit_side(node);
    std::vector<Word> pair(m_pairs.width());
    m_pairs.write(state.data(), node, pair.data());
    m_pairs.make_room(1);
    if (m_pairs.find_or_add(pair.data(), m_pairs.hash(pair.data()), 0, m_monitor.max_states()) ==
        no_state) {
        m_monitor.stop(StateSpace::Outcome::state_limit);
        throw StateSpace::SearchEnded();
    }
}

/// A refusal on this level takes fewer steps than an event that begins on it, and so does a loop among
/// what is explored: after such an event the rest of the level is looked at for these.
std::optional<Finding> PairSearch::explore_level() {
    m_level_end = m_pairs.size();
    while (m_explored < m_level_end) {
        fill_batch();
        if (auto found = examine_batch()) {
            return found;
        }
        insert_batch();
        m_explored += static_cast<StateNumber>(m_row_ends.size());
        look_around(m_steps.size() + m_row_ends.size());
    }
    ++m_depth;
    return std::exchange(m_event, std::nullopt);
}

/// The next pairs of the level, and their steps.
void PairSearch::fill_batch() {
    fit_side();
    m_first_source = m_explored;
    m_row_ends.clear();
    m_source_nodes.clear();
    m_steps.clear(m_side.width());
    m_steps.limit(std::max<std::uint64_t>(
        steps_wanted,
        m_monitor.memory_left() / (std::uint64_t{8} * (m_side.width() + 1) * sizeof(Word))));
    std::vector<Word>& state = m_source.state;
    for (StateNumber pair = m_explored; pair < m_level_end && m_steps.size() < steps_wanted;
         ++pair) {
        state.resize(m_side.width());
        m_pairs.read_state(pair, state.data());
        m_side.prepare(state.data());
        if (m_side.width() != m_steps.width()) { // wider from now on
            if (pair != m_first_source) {
                return;
            }
            fit_side();
            state.resize(m_side.width());
            m_steps.clear(m_side.width());
        }
        m_side.append_steps(state.data(), m_steps);
        m_row_ends.push_back(m_steps.size());
        m_source_nodes.push_back(m_pairs.node(pair));
    }
}

void PairSearch::fit_side(NodeNumber most_node) {
    if (!m_pairs.fits(m_side.width(), most_node)) {
        m_monitor.go_on(m_pairs.size(), m_pairs.memory_bytes() * 2);
        m_pairs.make_fit(m_side.width(), most_node);
    }
}

/// Tells what may not be offered, keeps in mind an event that may not come, and otherwise chooses the
/// steps that are followed.
std::optional<Finding> PairSearch::examine_batch() {
    make_room_to_follow();
    for (std::size_t source = 0; source < m_row_ends.size(); ++source) {
        if (looks_at_offer(source) && !allows_offer(source)) {
            return Finding{Finding::Kind::offer, m_first_source + static_cast<StateNumber>(source)};
        }
        if (!m_event || m_observer.forbids_loops()) {
            follow_row(source);
        }
    }
    return std::nullopt;
}

inline bool PairSearch::looks_at_offer(std::size_t source) const noexcept {
    bool const is_empty = row_begin(source) == m_row_ends[source];
    return m_looks_at == Observer::Offers::all ||
           (is_empty && m_looks_at == Observer::Offers::empty);
}

bool PairSearch::allows_offer(std::size_t source) {
    m_offer.clear();
    for (std::size_t step = row_begin(source); step < m_row_ends[source]; ++step) {
        unsigned const event = m_steps.event(step);
        if (m_offer.empty() || m_offer.back() != event) {
            m_offer.push_back(event);
        }
    }
    if (!std::is_sorted(m_offer.begin(), m_offer.end())) { // as they come from terms
        std::sort(m_offer.begin(), m_offer.end());
        m_offer.erase(std::unique(m_offer.begin(), m_offer.end()), m_offer.end());
    }
    return m_observer.allows_offer(m_source_nodes[source], m_offer);
}

void PairSearch::make_room_to_follow() {
    m_followed_count = 0;
    m_most_node = 0;
    if (m_followed.size() < m_steps.size()) {
        m_followed.resize(m_steps.size());
        m_hashes.resize(m_steps.size());
    }
    if (m_words.size() < m_followed.size() * m_pairs.width()) {
        m_words.resize(m_followed.size() * m_pairs.width());
    }
}

void PairSearch::follow_row(std::size_t source) {
    NodeNumber const node = m_source_nodes[source];
    std::span<NodeNumber const> known = m_next_nodes.row(node);
    for (std::size_t step = row_begin(source); step < m_row_ends[source]; ++step) {
        unsigned const event = m_steps.event(step);
        if (event == tau) {
            follow(source, step, node);
            continue;
        }
        if (m_event) {
            continue; // only loops can be found sooner
        }
        NodeNumber next = NextNodes::in_row(known, event);
        if (next == not_known) {
            next = next_node(node, event);
            known = m_next_nodes.row(node);
        }
        if (is_node(next)) {
            follow(source, step, next);
        } else if (next == forbidden) {
            note_event(source, step);
        } else {
            ++m_transitions;
        }
    }
}

inline void PairSearch::follow(std::size_t source, std::size_t step, NodeNumber next) {
    std::size_t const place = m_followed_count++;
    m_followed[place] = {static_cast<std::uint32_t>(source), static_cast<std::uint32_t>(step), next,
                         m_steps.event(step) == tau, m_steps.can_repeat(step)};
    m_most_node = std::max(m_most_node, next);
    write_followed(place);
}

/// Of a node that does not fit something else; `insert_batch` writes all anew then.
inline void PairSearch::write_followed(std::size_t place) {
    Followed const& followed = m_followed[place];
    Word* const pair = &m_words[place * m_pairs.width()];
    m_pairs.write(m_steps.words(followed.step), followed.node, pair);
    m_hashes[place] = m_pairs.hash(pair);
}

void PairSearch::note_event(std::size_t source, std::size_t step) {
    m_event = Finding{Finding::Kind::event,
                      m_first_source + static_cast<StateNumber>(source),
                      m_steps.event(step),
                      {m_steps.words(step), m_steps.words(step) + m_steps.width()}};
}

NodeNumber PairSearch::next_node(NodeNumber node, unsigned event) {
    NodeNumber next = m_next_nodes.find(node, event);
    if (next == not_known) {
        next = m_observer.after(node, event);
        if (event == tick && next != forbidden) {
            next = nothing_matters;
        }
        m_next_nodes.insert(node, event, next);
    }
    return next;
}

/// `likely` is the pair that it leads to, most likely.
inline void PairSearch::insert(std::size_t place, StateNumber likely) {
    Followed const& followed = m_followed[place];
    StateNumber const parent = m_first_source + followed.source;
    Word const* const words = &m_words[place * m_pairs.width()];
    StateNumber const target =
        likely != no_state && m_pairs.is_pair(likely, words)
            ? likely
            : m_pairs.find_or_add(words, m_hashes[place], parent, m_monitor.max_states());
    if (target == no_state) {
        m_monitor.stop(StateSpace::Outcome::state_limit);
        throw StateSpace::SearchEnded();
    }
    m_transitions += !followed.can_repeat || is_first(followed, target) ? 1 : 0;
    if (followed.is_silent && target <= parent && m_observer.forbids_loops()) {
        m_loop_heads.push_back(target);
    }
}

/// Among the steps of its source.
bool PairSearch::is_first(Followed const& followed, StateNumber target) {
    if (m_row_source != m_first_source + followed.source) {
        m_row_source = m_first_source + followed.source;
        m_row.clear();
    }
    return m_row.insert({m_steps.event(followed.step), target});
}

void PairSearch::insert_batch() {
    if (!m_pairs.fits(m_steps.width(), m_most_node)) {
        m_monitor.go_on(m_pairs.size(), m_pairs.memory_bytes() * 2);
        m_pairs.make_fit(m_steps.width(), m_most_node);
        m_words.resize(m_followed.size() * m_pairs.width());
        for (std::size_t place = 0; place < m_followed_count; ++place) {
            write_followed(place);
        }
    }
    std::size_t const count = m_followed_count;
    m_pairs.make_room(count);
    for (std::size_t place = 0; place < std::min(bucket_distance, count); ++place) {
        m_pairs.prefetch_bucket(m_hashes[place]);
    }
    for (std::size_t place = 0; place < std::min(pair_distance, count); ++place) {
        m_ahead[place] = m_pairs.prefetch_pair(m_hashes[place]);
    }
    for (std::size_t place = 0; place < count; ++place) {
        StateNumber& ahead = m_ahead[place % pair_distance];
        StateNumber const likely = ahead;
        if (place + bucket_distance < count) {
            m_pairs.prefetch_bucket(m_hashes[place + bucket_distance]);
        }
        if (place + pair_distance < count) {
            ahead = m_pairs.prefetch_pair(m_hashes[place + pair_distance]);
        }
        insert(place, likely);
    }
}

std::optional<Finding> PairSearch::find_loop() {
    if (m_loop_heads.empty()) {
        return std::nullopt;
    }
    std::sort(m_loop_heads.begin(), m_loop_heads.end());
    m_loop_heads.erase(std::unique(m_loop_heads.begin(), m_loop_heads.end()), m_loop_heads.end());
    std::vector<StateNumber> loop = first_loop(*this, m_loop_heads, m_monitor);
    if (loop.empty()) {
        return std::nullopt;
    }
    return Finding{Finding::Kind::loop, loop.front(), 0, {}, std::move(loop)};
}

/// A loop goes before what takes more steps to get to. Of the pairs before the end of the level an event
/// takes more than any; pairs of lower numbers take no more than those of higher ones. Where a limit is met what
/// was found is enough.
std::optional<Finding> PairSearch::find_loop_before(Finding found) {
    m_is_decided = true;
    if (!m_observer.forbids_loops() || (found.kind == Finding::Kind::loop && found.pair == 0)) {
        return found;
    }
    StateNumber const end = found.kind == Finding::Kind::event ? m_level_end : found.pair;
    auto const without_limits = [this](auto const& work) {
        try {
            work();
        } catch (StateSpace::SearchEnded const&) {
            if (!m_monitor.do_without()) {
                throw;
            }
        }
    };
    std::optional<Finding> loop;
    without_limits([&] { follow_silent_steps(std::max(m_pairs.size() / 2, least_silent_pairs)); });
    without_limits([&] { loop = find_loop(); });
    return loop && loop->pair < end ? std::move(loop) : std::optional(std::move(found));
}

/// From the pairs that are not explored yet, until there are so many more.
void PairSearch::follow_silent_steps(StateNumber most_more) {
    std::uint64_t const enough = std::uint64_t{m_pairs.size()} + most_more;
    while (m_explored < m_pairs.size() && m_pairs.size() < enough) {
        m_level_end = m_pairs.size();
        fill_batch();
        make_room_to_follow();
        for (std::size_t source = 0; source < m_row_ends.size(); ++source) {
            for (std::size_t step = row_begin(source); step < m_row_ends[source]; ++step) {
                if (m_steps.event(step) == tau) {
                    follow(source, step, m_source_nodes[source]);
                }
            }
        }
        insert_batch();
        m_explored += static_cast<StateNumber>(m_row_ends.size());
        look_around(m_steps.size() + m_row_ends.size());
    }
}

void PairSearch::look_around(std::uint64_t work) {
    if (!m_monitor.is_due(work)) {
        return;
    }
    std::uint64_t const ahead = m_monitor.work_ahead() + steps_wanted; // a batch may go beyond
    StateNumber const pairs = m_pairs.size();
    StateSpace::Progress const progress{pairs, m_transitions, m_explored, pairs - m_explored,
                                        m_depth};
    if (!m_monitor.look_around(progress, m_pairs.growth_bytes(ahead) + m_side.growth_bytes(ahead) +
                                             m_next_nodes.growth_bytes(ahead))) {
        throw StateSpace::SearchEnded();
    }
}

void PairSearch::find_steps(StateNumber pair, PairSteps& found) {
    fit_side();
    found.state.resize(m_side.width());
    m_pairs.read_state(pair, found.state.data());
    found.node = m_pairs.node(pair);
    m_side.prepare(found.state.data());
    found.steps.clear(m_side.width());
    m_side.append_steps(found.state.data(), found.steps);
}

StateNumber PairSearch::target_of(PairSteps const& from, std::size_t step) {
    unsigned const event = from.steps.event(step);
    NodeNumber const node = event == tau ? from.node : m_next_nodes.find(from.node, event);
    if (!is_node(node) || !m_pairs.fits(from.steps.width(), node)) {
        return no_state;
    }
    m_words.resize(std::max<std::size_t>(m_words.size(), m_pairs.width()));
    m_pairs.write(from.steps.words(step), node, m_words.data());
    return m_pairs.find(m_words.data());
}

} // namespace Calder::Refinement
