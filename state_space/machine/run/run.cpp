#include "state_space/machine/run/run.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/machine/run/shared_round.h"

#include <algorithm>
#include <new>
#include <optional>

namespace Calder::StateSpace {

namespace {

/// Explores job by job, by one thread, where there is little to explore, and otherwise round by round.
class Runner {
  public:
    Runner(ConfigurationTables& tables, RunOptions const& options, Cut const& cut)
        : m_tables(tables), m_options(options), m_cut(cut) {}

    Run run() {
        Run result;
        try {
            explore_all();
        } catch (std::bad_alloc const&) {
            m_monitor.stop(Outcome::memory_limit);
        } catch (MachineRefusal const& refusal) {
            result.refusal = refusal.what();
        } catch (SearchEnded const&) { // the monitor knows why
        }
        m_round.reset();
        m_team.reset();
        result.state_count = m_states->size();
        result.transition_count = m_rows.transition_count();
        result.outcome = m_monitor.outcome();
        result.lts = m_rows.finish(m_states->size());
        result.states = std::move(m_states);
        return result;
    }

  private:
    void explore_all();
    bool add_start();
    bool explore_job();
    void fill_job();
    bool take_job();
    std::optional<RoundSize> next_round();
    bool has_team();
    bool explore_round(RoundSize const& size);
    bool begin_round(RoundSize const& size);
    void make_tables(StateNumber first, StateNumber last);
    SearchedSoFar so_far() const;
    std::uint64_t round_bytes(std::uint64_t jobs, std::uint64_t additions) const;
    std::size_t most_steps() const;
    void count_explored(StateNumber count);
    bool look_around();

    ConfigurationTables& m_tables;
    RunOptions const& m_options;
    Cut const m_cut;
    SearchMonitor m_monitor{m_options, SearchMonitor::longest_for_machines};
    std::shared_ptr<ReachedStates> m_states =
        std::make_shared<ReachedStates>(m_cut.most_plain_words);
    FoundRows m_rows{m_options.keep_transitions};
    SearchJob m_job;
    LookingAhead<VisitedStates> m_ahead;
    std::optional<Team> m_team; // from the first round on
    std::optional<SharedRound> m_round;
    StateNumber m_alone_until = 0; // what a round could not do
    StateNumber m_explored = 0;
    StateNumber m_depth = 0;
    StateNumber m_level_end = 1;
};

void Runner::explore_all() {
    bool goes_on = add_start();
    while (goes_on && m_explored < m_states->size()) {
        std::optional<RoundSize> const round = next_round();
        goes_on = round && has_team() ? explore_round(*round) : explore_job();
    }
}

bool Runner::add_start() {
    m_tables.make_first(m_monitor);
    m_states->widen(m_tables.width());
    std::vector<Word> const words = m_tables.start();
    return m_states->find_or_add(words.data(), m_options.max_states) != no_state ||
           m_monitor.stop(Outcome::state_limit);
}

bool Runner::explore_job() {
    fill_job();
    m_job.search();
    return take_job();
}

/// A table that is made on the way may need wider states: the job ends before such a state.
void Runner::fill_job() {
    StateNumber const wanted = sources_of_job(so_far(), m_cut);
    m_job.clear(*m_states, most_steps());
    for (StateNumber state = m_explored; state < m_states->size() && m_job.source_count() < wanted;
         ++state) {
        SuccessorTable const& table =
            m_tables.table(m_tables.configuration_of(m_states->first_word(state)), m_monitor);
        if (m_tables.width() > m_states->width()) {
            if (m_job.source_count() > 0) {
                return;
            }
            m_states->widen(m_tables.width());
        }
        m_job.add_source(state, table);
    }
}

SearchedSoFar Runner::so_far() const {
    return {m_states->size(), m_explored, m_rows.transition_count()};
}

/// What there is memory for, twice over while an array grows: a step with its hash, and its state in
/// the table.
std::size_t Runner::most_steps() const {
    std::uint64_t const words = std::uint64_t{2} * m_states->width() * sizeof(Word);
    constexpr std::uint64_t rest = sizeof(unsigned) + sizeof(std::uint64_t) + sizeof(std::uint64_t);
    return static_cast<std::size_t>(std::clamp<std::uint64_t>(
        m_monitor.memory_left() / (2 * (words + rest)), m_cut.steps_of_job, Steps::unbounded));
}

bool Runner::take_job() {
    Steps const& steps = m_job.steps();
    VisitedStates& states = m_states->kept();
    states.make_room(steps.size());
    m_ahead.begin(states, m_job.hashes());
    auto const target_of = [&](std::size_t step) { // no_state when it is one too many
        StateNumber const likely = m_ahead.likely_target(states, m_job.hashes(), step);
        Word const* const words = steps.words(step);
        return likely != no_state && states.is_state(likely, words)
                   ? likely
                   : states.find_or_add(words, m_job.hash(step), m_options.max_states);
    };
    std::size_t first = 0;
    for (std::size_t source = 0; source < m_job.source_count(); ++source) {
        if (!m_rows.add_row(steps, first, m_job.row_end(source), target_of)) {
            return m_monitor.stop(Outcome::state_limit);
        }
        first = m_job.row_end(source);
        count_explored(1);
    }
    return !m_monitor.is_due(steps.size()) || look_around();
}

void Runner::count_explored(StateNumber count) {
    m_explored += count;
    if (m_explored == m_level_end) {
        ++m_depth;
        m_level_end = m_states->size();
    }
}

/// Where enough is to be explored on this level, and there is room and memory for what is found.
std::optional<RoundSize> Runner::next_round() {
    if (m_options.threads == 1 || m_explored < m_alone_until) {
        return std::nullopt;
    }
    auto round = StateSpace::next_round(so_far(), m_level_end, m_cut, m_options.threads, m_monitor);
    if (!round || round_bytes(round->jobs(), round->most_additions) > m_monitor.memory_left()) {
        return std::nullopt;
    }
    round->most_steps = most_steps() / m_options.threads;
    return round;
}

/// What a round may take besides what there is.
std::uint64_t Runner::round_bytes(std::uint64_t jobs, std::uint64_t additions) const {
    constexpr std::uint64_t a_step = 40; // in a list of additions and, twice over, as a transition
    return m_states->sharing_bytes(additions, m_options.threads) +
           SharedAdditions::bytes_of(additions, m_states->kept().width()) +
           m_rows.growth_bytes((jobs + 1) * m_cut.steps_of_job) +
           (jobs + 1) * m_cut.steps_of_job * a_step;
}

bool Runner::has_team() {
    if (!m_team) {
        m_team.emplace(m_options.threads);
        m_round.emplace(*m_team, *m_states, m_tables, m_rows);
    }
    return m_team->size() > 1;
}

bool Runner::explore_round(RoundSize const& size) {
    make_tables(size.first, size.last);
    if (!begin_round(size)) {
        return true;
    }
    if (!m_round->explore()) {
        m_alone_until = size.last;
        return true;
    }
    count_explored(size.last - size.first);
    return !m_monitor.is_due(m_round->step_count()) || look_around();
}

/// Without memory for it, what the other threads have may be enough for one.
bool Runner::begin_round(RoundSize const& size) {
    try {
        m_round->begin(size);
        return true;
    } catch (std::bad_alloc const&) {
        m_round.reset();
        m_team.reset();
        m_alone_until = no_state;
        return false;
    }
}

/// Those that the states need, as wide as that makes all states.
void Runner::make_tables(StateNumber first, StateNumber last) {
    for (StateNumber state = first; state < last && !m_tables.is_static(); ++state) {
        m_tables.table(m_tables.configuration_of(m_states->first_word(state)), m_monitor);
        if (m_tables.width() > m_states->width()) {
            m_states->widen(m_tables.width());
        }
    }
}

bool Runner::look_around() {
    StateNumber const states = m_states->size();
    std::uint64_t const ahead = m_monitor.work_ahead() + m_cut.steps_of_job; // a job may go beyond
    return m_monitor.look_around(
        Progress{states, m_rows.transition_count(), m_explored, states - m_explored, m_depth},
        m_states->growth_bytes(ahead) + m_rows.growth_bytes(ahead));
}

} // namespace

Run run_of(Exploration exploration) {
    Run run;
    run.state_count = exploration.lts.state_count();
    run.transition_count = exploration.lts.transition_count();
    run.outcome = exploration.outcome;
    run.lts = std::move(exploration.lts);
    return run;
}

Run run(ConfigurationTables& tables, RunOptions const& options, Cut const& cut) {
    return Runner(tables, options, cut).run();
}

} // namespace Calder::StateSpace
