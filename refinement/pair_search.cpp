#include "refinement/pair_search.h"

#include "process_compiler/event_numbers.h"
#include "refinement/loops.h"

#include <algorithm>
#include <new>

namespace Calder::Refinement {

using ProcessCompiler::tau;
using StateSpace::no_state;

namespace {

/// So many pairs more cost less than starting does.
constexpr StateNumber least_silent_pairs = 1024;

} // namespace

PairSearch::PairSearch(Side& side, Observer& observer, SearchMonitor& monitor, unsigned threads,
                       StateSpace::Cut const& cut)
    : m_side(side), m_observer(observer), m_monitor(monitor),
      m_threads(side.machine() == nullptr ? 1 : threads), m_cut(cut),
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
    begin_batch();
    while (m_explored < m_level_end) {
        if (auto const round = next_round()) {
            explore_round(*round);
        } else if (auto found = explore_batch()) {
            return found;
        }
    }
    ++m_depth;
    return std::exchange(m_event, std::nullopt);
}

/// Where enough is to be explored on this level, and there is room and memory for what is found.
std::optional<StateSpace::RoundSize> PairSearch::next_round() {
    if (m_threads == 1 || m_event || m_explored < m_alone_until) {
        return std::nullopt;
    }
    StateSpace::SearchedSoFar const so_far{m_pairs.size(), m_explored, m_transitions};
    auto round = StateSpace::next_round(so_far, m_level_end, m_cut, m_threads, m_monitor);
    if (!round || !has_team() || m_round->growth_bytes(*round, m_cut) > m_monitor.memory_left()) {
        return std::nullopt;
    }
    fit_side();
    round->last = m_round->first_not_prepared(round->first, round->last);
    if (round->jobs() < m_cut.least_jobs_of_round) {
        m_alone_until = round->last + 1;
        return std::nullopt;
    }
    round->most_steps = static_cast<std::size_t>(most_steps() / m_threads);
    return round;
}

bool PairSearch::has_team() {
    if (!m_team) {
        m_team.emplace(m_threads);
        m_round.emplace(*m_team, m_side, m_pairs, m_answers);
    }
    return m_team->size() > 1;
}

/// Where the observer had to be asked for most of it, threads are of no use.
void PairSearch::explore_round(StateSpace::RoundSize const& size) {
    if (!try_round(size)) {
        m_alone_until = std::max(m_alone_until, size.last);
        return;
    }
    if (m_round->asked_count() * 2 > m_round->job_count()) {
        m_alone_until = m_level_end;
    }
    std::uint64_t work = 0;
    for (std::size_t number = 0; number < m_round->job_count(); ++number) {
        work += count_job(m_round->job(number));
    }
    look_around(work);
}

/// Without memory for it, what the other threads have may be enough for one. A limit of what the observer looks at is
/// met again by one thread, at its place.
bool PairSearch::try_round(StateSpace::RoundSize const& size) {
    try {
        m_round->begin(size);
    } catch (std::bad_alloc const&) {
        m_round.reset();
        m_team.reset();
        m_alone_until = no_state;
        return false;
    }
    try {
        return m_round->explore();
    } catch (StateSpace::SearchEnded const&) {
        if (m_monitor.outcome() == StateSpace::Outcome::interrupted ||
            m_monitor.outcome() == StateSpace::Outcome::memory_limit) {
            throw;
        }
        return false;
    }
}

/// Counts what it has found, and tells where the batches of one thread would have begun. Returns the work.
std::uint64_t PairSearch::count_job(PairRound::Job const& job) {
    std::size_t const loop_heads = m_loop_heads.size();
    PairBatch::Row before{};
    for (PairBatch::Row const& row : job.rows) {
        m_transitions += row.transitions - before.transitions + (row.passed - before.passed);
        m_begun.steps += row.steps - before.steps;
        m_begun.passed += row.passed - before.passed;
        before = row;
        ++m_explored;
        if (m_begun.steps >= m_cut.steps_of_job) {
            begin_batch();
            m_begun.loop_heads = loop_heads + row.loop_heads;
        }
    }
    m_loop_heads.insert(m_loop_heads.end(), job.loop_heads.begin(), job.loop_heads.end());
    return before.steps + job.rows.size();
}

/// A whole one, or what rounds have left of it.
std::optional<Finding> PairSearch::explore_batch() {
    fill_batch();
    std::optional<Finding> found;
    try {
        found = examine_batch();
    } catch (...) {
        leave_batch();
        throw;
    }
    if (found) {
        leave_batch();
        return found;
    }
    insert_batch();
    return std::nullopt;
}

void PairSearch::begin_batch() noexcept {
    m_begun = {m_explored, m_transitions, m_loop_heads.size()};
}

/// Nothing is reached from the batch, though what it passes counts.
void PairSearch::leave_batch() {
    m_transitions = m_begun.transitions + m_begun.passed + m_batch.passed();
    if (m_begun.first_source != m_explored) {
        m_explored = m_begun.first_source;
        m_loop_heads.resize(m_begun.loop_heads);
        m_pairs.forget_reached_from(m_explored);
    }
}

/// The next pairs of the level, and their steps.
void PairSearch::fill_batch() {
    fit_side();
    m_batch.begin(m_explored, m_side.width(), most_steps());
    for (StateNumber pair = m_explored;
         pair < m_level_end && m_begun.steps + m_batch.steps().size() < m_cut.steps_of_job;
         ++pair) {
        m_side.prepare(m_batch.read(m_pairs, pair));
        if (m_side.width() != m_batch.steps().width()) { // wider from now on
            if (pair != m_begun.first_source) {
                return;
            }
            fit_side();
            m_batch.begin(pair, m_side.width(), most_steps());
            m_batch.read(m_pairs, pair);
        }
        m_batch.add(m_side);
    }
}

/// What there is memory for.
std::uint64_t PairSearch::most_steps() const noexcept {
    return std::max<std::uint64_t>(m_cut.steps_of_job,
                                   m_monitor.memory_left() /
                                       (std::uint64_t{8} * (m_side.width() + 1) * sizeof(Word)));
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
    Asking const asking(m_answers);
    m_batch.begin_following(m_pairs);
    for (std::size_t source = 0; source < m_batch.source_count(); ++source) {
        if (m_batch.is_among(source, m_looks_at) &&
            !asking.allows_offer(m_batch.node(source), m_batch.offer(source))) {
            return Finding{Finding::Kind::offer,
                           m_batch.first_source() + static_cast<StateNumber>(source)};
        }
        if (!m_event || m_observer.forbids_loops()) {
            follow_row(source);
        }
        m_batch.end_row(source);
    }
    return std::nullopt;
}

/// After an event that may not come, only loops can be found sooner.
void PairSearch::follow_row(std::size_t source) {
    std::size_t step = m_batch.row_begin(source);
    if (!m_event) {
        step = m_batch.follow_row(source, m_pairs, Asking(m_answers));
        if (step == m_batch.row_end(source)) {
            return;
        }
        note_event(source, step);
    }
    m_batch.follow_silent_steps(source, step, m_pairs);
}

void PairSearch::note_event(std::size_t source, std::size_t step) {
    Steps const& steps = m_batch.steps();
    m_event = Finding{Finding::Kind::event,
                      m_batch.first_source() + static_cast<StateNumber>(source),
                      steps.event(step),
                      {steps.words(step), steps.words(step) + steps.width()}};
}

/// It is explored then.
void PairSearch::insert_batch() {
    Steps const& steps = m_batch.steps();
    if (!m_pairs.fits(steps.width(), m_batch.most_node())) {
        m_monitor.go_on(m_pairs.size(), m_pairs.memory_bytes() * 2);
        m_pairs.make_fit(steps.width(), m_batch.most_node());
        m_batch.write_again(m_pairs);
    }
    bool const has_room = reach_pairs();
    m_transitions += m_batch.passed() + m_batch.transitions();
    if (!has_room) {
        m_monitor.stop(StateSpace::Outcome::state_limit);
        throw StateSpace::SearchEnded();
    }
    auto const& heads = m_batch.loop_heads();
    m_loop_heads.insert(m_loop_heads.end(), heads.begin(), heads.end());
    m_explored += static_cast<StateNumber>(m_batch.source_count());
    begin_batch();
    look_around(steps.size() + m_batch.source_count());
}

/// False when there is one too many.
bool PairSearch::reach_pairs() {
    std::span<std::uint64_t const> const hashes = m_batch.hashes();
    m_pairs.make_room(hashes.size());
    m_ahead.begin(m_pairs, hashes);
    return m_batch.reach(m_observer.forbids_loops(), [&](std::size_t place, StateNumber parent) {
        StateNumber const likely = m_ahead.likely_target(m_pairs, hashes, place);
        Word const* const words = m_batch.words(place);
        return likely != no_state && m_pairs.is_pair(likely, words)
                   ? likely
                   : m_pairs.find_or_add(words, hashes[place], parent, m_monitor.max_states());
    });
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
        begin_batch();
        fill_batch();
        m_batch.begin_following(m_pairs);
        for (std::size_t source = 0; source < m_batch.source_count(); ++source) {
            m_batch.follow_silent_steps(source, m_batch.row_begin(source), m_pairs);
            m_batch.end_row(source);
        }
        insert_batch();
    }
}

void PairSearch::look_around(std::uint64_t work) {
    if (!m_monitor.is_due(work)) {
        return;
    }
    std::uint64_t const ahead =
        m_monitor.work_ahead() + m_cut.steps_of_job; // a batch may go beyond
    StateNumber const pairs = m_pairs.size();
    StateSpace::Progress const progress{pairs, m_transitions, m_explored, pairs - m_explored,
                                        m_depth};
    if (!m_monitor.look_around(progress, m_pairs.growth_bytes(ahead) + m_side.growth_bytes(ahead) +
                                             m_answers.next_nodes().growth_bytes(ahead))) {
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
    m_side.append_steps(found.state.data(), found.steps, m_scratch);
}

StateNumber PairSearch::target_of(PairSteps const& from, std::size_t step) {
    unsigned const event = from.steps.event(step);
    NodeNumber const node =
        event == tau ? from.node : m_answers.next_nodes().find(from.node, event);
    if (!is_node(node) || !m_pairs.fits(from.steps.width(), node)) {
        return no_state;
    }
    m_words.resize(std::max<std::size_t>(m_words.size(), m_pairs.width()));
    m_pairs.write(from.steps.words(step), node, m_words.data());
    return m_pairs.find(m_words.data());
}

} // namespace Calder::Refinement
