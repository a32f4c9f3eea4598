#include "state_space/machine/run/run.h"

#include "state_space/machine/machine_refusal.h"
#include "state_space/machine/run/counting_round.h"
#include "state_space/machine/run/numbered_round.h"
#include "state_space/machine/run/unordered_round.h"

#include <algorithm>
#include <new>
#include <optional>

namespace Calder::StateSpace {

namespace {

/// Does work that a limit, or whoever watches, may end, or that may refuse the machine: then the monitor knows, or the
/// result.
template <typename Work> void do_guarded(SearchMonitor& monitor, Run& result, Work&& work) {
    try {
        work();
    } catch (std::bad_alloc const&) {
        monitor.stop(Outcome::memory_limit);
    } catch (MachineRefusal const& refusal) {
        result.refusal = refusal.what();
    } catch (SearchEnded const&) { // the monitor knows why
    }
}

/// Explores job by job, by one thread, where there is little to explore, and otherwise round by round. What is
/// found is up to the search, and what several threads do to the round: see `run`.
template <typename Search, typename Round> class Runner {
  public:
    /// The table of the first configuration must be there.
    Runner(ConfigurationTables& tables, RunOptions const& options, Cut const& cut,
           SearchMonitor& monitor)
        : m_tables(tables), m_options(options), m_cut(cut), m_monitor(monitor),
          m_search(options, cut) {}

    void run(Run& result) {
        do_guarded(m_monitor, result, [this] { explore_all(); });
        m_round.reset();
        m_team.reset();
        result.state_count = m_search.size();
        result.transition_count = m_search.transition_count();
        m_search.finish(result);
    }

  private:
    void explore_all();
    bool add_start();
    bool explore_job();
    SearchJob& fill_job();
    bool add_sources(SearchJob& job);
    std::optional<RoundSize> next_round();
    bool has_team();
    bool explore_round(RoundSize const& size);
    bool begin_round(RoundSize const& size);
    void make_tables(StateNumber first, StateNumber last);
    SearchedSoFar so_far() const;
    std::size_t most_steps() const;
    void count_explored(StateNumber count);
    bool look_around();

    ConfigurationTables& m_tables;
    RunOptions const& m_options;
    Cut const m_cut;
    SearchMonitor& m_monitor;
    Search m_search;
    std::optional<Team> m_team; // from the first round on
    std::optional<Round> m_round;
    StateNumber m_alone_until = 0; // what a round could not do
    StateNumber m_explored = 0;
    StateNumber m_depth = 0;
    StateNumber m_level_end = 0;
};

template <typename Search, typename Round> void Runner<Search, Round>::explore_all() {
    bool goes_on = add_start();
    while (goes_on && m_explored < m_search.size()) {
        std::optional<RoundSize> const round = next_round();
        goes_on = round && has_team() ? explore_round(*round) : explore_job();
    }
}

template <typename Search, typename Round> bool Runner<Search, Round>::add_start() {
    m_search.widen(m_tables.width());
    m_level_end = 1;
    return m_search.add_start(m_tables.start()) || m_monitor.stop(Outcome::state_limit);
}

template <typename Search, typename Round> bool Runner<Search, Round>::explore_job() {
    SearchJob& job = fill_job();
    job.search();
    StateNumber const explored = m_search.take_job();
    count_explored(explored);
    if (explored < job.source_count()) {
        return m_monitor.stop(Outcome::state_limit);
    }
    return !m_monitor.is_due(job.steps().size()) || look_around();
}

/// With at least one source.
template <typename Search, typename Round> SearchJob& Runner<Search, Round>::fill_job() {
    for (;;) {
        SearchJob& job = m_search.begin_job(most_steps());
        if (add_sources(job) || job.source_count() > 0) {
            return job;
        }
        m_search.widen(m_tables.width());
    }
}

/// False where a table that is made on the way needs wider states: the job ends before the state that it is for.
template <typename Search, typename Round> bool Runner<Search, Round>::add_sources(SearchJob& job) {
    StateNumber const wanted = sources_of_job(so_far(), m_cut);
    bool are_wide_enough = true;
    m_search.for_each(
        m_explored, std::min(m_level_end - m_explored, wanted) + m_explored, [&](Word const* kept) {
            SuccessorTable const& table =
                m_tables.table(m_tables.configuration_of(m_search.first_word(kept)), m_monitor);
            are_wide_enough = m_tables.width() <= m_search.width();
            if (are_wide_enough) {
                job.add_source(kept, table);
            }
            return are_wide_enough;
        });
    return are_wide_enough;
}

template <typename Search, typename Round> SearchedSoFar Runner<Search, Round>::so_far() const {
    return {m_search.size(), m_explored, m_search.transition_count()};
}

/// What there is memory for, twice over while an array grows: a step with its hash, and its state in
/// the table.
template <typename Search, typename Round> std::size_t Runner<Search, Round>::most_steps() const {
    std::uint64_t const words = std::uint64_t{2} * m_search.width() * sizeof(Word);
    constexpr std::uint64_t rest = sizeof(unsigned) + sizeof(std::uint64_t) + sizeof(std::uint64_t);
    return static_cast<std::size_t>(std::clamp<std::uint64_t>(
        m_monitor.memory_left() / (2 * (words + rest)), m_cut.steps_of_job, Steps::unbounded));
}

template <typename Search, typename Round>
void Runner<Search, Round>::count_explored(StateNumber count) {
    m_explored += count;
    if (m_explored == m_level_end) {
        ++m_depth;
        m_level_end = m_search.size();
        m_search.begin_level(m_explored);
    }
}

/// Where enough is to be explored on this level, and there is room and memory for what is found.
template <typename Search, typename Round>
std::optional<RoundSize> Runner<Search, Round>::next_round() {
    if (m_options.threads == 1 || m_explored < m_alone_until) {
        return std::nullopt;
    }
    auto round = StateSpace::next_round(so_far(), m_level_end, m_cut, m_options.threads, m_monitor);
    if (!round || m_search.round_bytes((round->jobs() + 1) * m_cut.steps_of_job,
                                       round->most_additions) > m_monitor.memory_left()) {
        return std::nullopt;
    }
    round->most_steps = most_steps() / m_options.threads;
    return round;
}

template <typename Search, typename Round> bool Runner<Search, Round>::has_team() {
    if (!m_team) {
        m_team.emplace(m_options.threads);
        m_round.emplace(*m_team, m_search, m_tables);
    }
    return m_team->size() > 1;
}

template <typename Search, typename Round>
bool Runner<Search, Round>::explore_round(RoundSize const& size) {
    make_tables(size.first, size.last);
    if (!begin_round(size)) {
        return true;
    }
    StateNumber const explored = m_round->explore();
    if (explored < size.last - size.first) {
        m_alone_until = size.last;
    }
    count_explored(explored);
    return !m_monitor.is_due(m_round->step_count()) || look_around();
}

/// Without memory for it, what the other threads have may be enough for one.
template <typename Search, typename Round>
bool Runner<Search, Round>::begin_round(RoundSize const& size) {
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
template <typename Search, typename Round>
void Runner<Search, Round>::make_tables(StateNumber first, StateNumber last) {
    if (m_tables.is_static()) {
        return;
    }
    m_search.for_each(first, last, [&](Word const* kept) {
        m_tables.table(m_tables.configuration_of(m_search.first_word(kept)), m_monitor);
        return true;
    });
    if (m_tables.width() > m_search.width()) {
        m_search.widen(m_tables.width());
    }
}

template <typename Search, typename Round> bool Runner<Search, Round>::look_around() {
    StateNumber const states = m_search.size();
    std::uint64_t const ahead = m_monitor.work_ahead() + m_cut.steps_of_job; // a job may go beyond
    return m_monitor.look_around(
        Progress{states, m_search.transition_count(), m_explored, states - m_explored, m_depth},
        m_search.growth_bytes(ahead));
}

/// Numbers matter for transitions, and so that a limit on states ends a run at the same transition with any
/// number of threads.
bool do_numbers_matter(RunOptions const& options) {
    return options.keep_transitions || (options.threads > 1 && options.max_states < no_state);
}

template <typename Search, typename Round> void run_as(ConfigurationTables& tables,
                                                       RunOptions const& options, Cut const& cut,
                                                       SearchMonitor& monitor, Run& result) {
    Runner<Search, Round>(tables, options, cut, monitor).run(result);
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
    Run result;
    SearchMonitor monitor(options, SearchMonitor::longest_for_machines);
    bool is_ready = false;
    do_guarded(monitor, result, [&] {
        tables.make_first(monitor);
        is_ready = true;
    });
    if (is_ready) {
        auto const run_so = do_numbers_matter(options) ? run_as<NumberedSearch, NumberedRound>
                            : tables.is_static() && tables.width() == 1
                                ? run_as<CountingSearch, CountingRound>
                                : run_as<NumberedSearch, UnorderedRound>;
        run_so(tables, options, cut, monitor, result);
    }
    result.outcome = monitor.outcome();
    return result;
}

} // namespace Calder::StateSpace
