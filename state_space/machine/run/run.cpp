#include "state_space/machine/run/run.h"

#include "state_space/lts_builder.h"
#include "state_space/machine/machine_refusal.h"
#include "state_space/machine/run/successor_search.h"
#include "state_space/machine/run/visited_states.h"

#include <algorithm>
#include <array>
#include <new>

namespace Calder::StateSpace {

namespace {

/// How many steps ahead memory is asked for: first the bucket, then the state that it names.
constexpr std::size_t bucket_distance = 32;
constexpr std::size_t state_distance = 16;

/// Steps wanted of one job: what stays in a core's own cache, and makes handing it over cheap.
constexpr std::uint64_t steps_wanted = 4096;
constexpr std::uint64_t most_sources = 1024;

class Runner {
  public:
    Runner(ConfigurationTables& tables, RunOptions const& options)
        : m_tables(tables), m_options(options), m_search(options.threads) {}

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
        m_search.stop();
        result.state_count = m_states->size();
        result.transition_count = m_transitions;
        result.outcome = m_monitor.outcome();
        if (m_options.keep_transitions) {
            result.lts = m_builder.finish(m_states->size());
        }
        result.states = std::move(m_states);
        return result;
    }

  private:
    void explore_all();
    bool add_start();
    void hand_out_work();
    void fill(SearchJob& job);
    bool take(SearchJob& job);
    bool take_row(SearchJob const& job, std::size_t first, std::size_t last);
    void end_row(std::uint64_t never_repeated);
    StateNumber target_of(SearchJob const& job, std::size_t step);
    void begin_looking_ahead(SearchJob const& job);
    std::uint64_t sources_wanted() const;
    std::size_t most_steps() const;
    bool look_around();

    ConfigurationTables& m_tables;
    RunOptions const& m_options;
    SearchMonitor m_monitor{m_options, SearchMonitor::longest_for_machines};
    std::shared_ptr<VisitedStates> m_states = std::make_shared<VisitedStates>(1);
    LtsBuilder m_builder; // when transitions are not kept, only of steps that may be repeated
    SuccessorSearch m_search;
    StateNumber m_handed_out = 0; // states whose successors are being looked for, or known
    StateNumber m_explored = 0;
    std::uint64_t m_transitions = 0;
    StateNumber m_depth = 0;
    StateNumber m_level_end = 1;
    /// Of the steps to come, the states that they most likely lead to: step i is at i modulo the
    /// distance.
    std::array<StateNumber, state_distance> m_ahead{};
};

void Runner::explore_all() {
    if (!add_start()) {
        return;
    }
    for (;;) {
        hand_out_work();
        if (m_search.is_idle()) {
            return;
        }
        bool const goes_on = take(m_search.oldest());
        m_search.release_oldest();
        if (!goes_on) {
            return;
        }
    }
}

bool Runner::add_start() {
    m_tables.make_first(m_monitor);
    m_states->widen(m_tables.width());
    std::vector<Word> const words = m_tables.start();
    m_states->make_room(1);
    std::uint64_t const hash = VisitedStates::hash(words.data(), m_states->width());
    return m_states->find_or_add(words.data(), hash, m_options.max_states) != no_state ||
           m_monitor.stop(Outcome::state_limit);
}

void Runner::hand_out_work() {
    while (m_search.has_room() && m_handed_out < m_states->size()) {
        fill(m_search.free_job());
        m_search.submit();
    }
}

/// A table that is made on the way may need wider states: the job ends before such a state.
void Runner::fill(SearchJob& job) {
    std::uint64_t const wanted = sources_wanted();
    job.clear(m_states->width(), most_steps());
    while (m_handed_out < m_states->size() && job.source_count() < wanted) {
        SuccessorTable const& table =
            m_tables.table(m_tables.configuration_of(m_states->words(m_handed_out)), m_monitor);
        if (m_tables.width() > m_states->width()) {
            m_states->widen(m_tables.width());
            if (job.source_count() > 0) {
                return;
            }
            job.clear(m_states->width(), most_steps());
        }
        job.add_source(m_states->words(m_handed_out), table);
        ++m_handed_out;
    }
}

/// By how many successors the states had so far.
std::uint64_t Runner::sources_wanted() const {
    return std::clamp<std::uint64_t>(steps_wanted * (m_explored + 1) / (m_transitions + 1), 1,
                                     most_sources);
}

/// What there is memory for, twice over while an array grows: a step with its hash, and its state in
/// the table.
std::size_t Runner::most_steps() const {
    std::uint64_t const words = std::uint64_t{2} * m_states->width() * sizeof(Word);
    constexpr std::uint64_t rest = sizeof(unsigned) + sizeof(std::uint64_t) + sizeof(std::uint64_t);
    return static_cast<std::size_t>(std::clamp<std::uint64_t>(
        m_monitor.memory_left() / (2 * (words + rest)), steps_wanted, Steps::unbounded));
}

bool Runner::take(SearchJob& job) {
    if (job.steps().width() < m_states->width()) {
        job.widen(m_states->width());
    }
    m_states->make_room(job.steps().size());
    begin_looking_ahead(job);
    std::size_t first = 0;
    for (std::size_t source = 0; source < job.source_count(); ++source) {
        if (!take_row(job, first, job.row_end(source))) {
            return m_monitor.stop(Outcome::state_limit);
        }
        first = job.row_end(source);
    }
    return !m_monitor.is_due(job.steps().size()) || look_around();
}

/// The row of the state that is being explored; false when it has a state too many.
bool Runner::take_row(SearchJob const& job, std::size_t first, std::size_t last) {
    Steps const& steps = job.steps();
    std::uint64_t never_repeated = 0;
    for (std::size_t step = first; step < last; ++step) {
        StateNumber const target = target_of(job, step);
        if (target == no_state) {
            return false;
        }
        if (steps.can_repeat(step)) {
            m_builder.add(steps.event(step), target);
        } else if (m_options.keep_transitions) {
            m_builder.add_new(steps.event(step), target);
        } else {
            ++never_repeated;
        }
    }
    end_row(never_repeated);
    return true;
}

void Runner::end_row(std::uint64_t never_repeated) {
    if (m_options.keep_transitions) {
        m_builder.end_row();
        m_transitions = m_builder.transition_count();
    } else {
        m_transitions += never_repeated + m_builder.transition_count();
        m_builder.drop_row();
    }
    if (++m_explored == m_level_end) {
        ++m_depth;
        m_level_end = m_states->size();
    }
}

/// no_state when it is one too many.
StateNumber Runner::target_of(SearchJob const& job, std::size_t step) {
    std::size_t const steps = job.steps().size();
    StateNumber& ahead = m_ahead[step % state_distance];
    StateNumber const likely = ahead;
    if (step + bucket_distance < steps) {
        m_states->prefetch_bucket(job.hash(step + bucket_distance));
    }
    if (step + state_distance < steps) {
        ahead = m_states->prefetch_state(job.hash(step + state_distance));
    }
    Word const* const words = job.steps().words(step);
    return likely != no_state && m_states->is_state(likely, words)
               ? likely
               : m_states->find_or_add(words, job.hash(step), m_options.max_states);
}

void Runner::begin_looking_ahead(SearchJob const& job) {
    std::size_t const steps = job.steps().size();
    for (std::size_t step = 0; step < std::min(bucket_distance, steps); ++step) {
        m_states->prefetch_bucket(job.hash(step));
    }
    for (std::size_t step = 0; step < std::min(state_distance, steps); ++step) {
        m_ahead[step] = m_states->prefetch_state(job.hash(step));
    }
}

bool Runner::look_around() {
    StateNumber const states = m_states->size();
    std::uint64_t const ahead = m_monitor.work_ahead() + steps_wanted; // a job may go beyond
    return m_monitor.look_around(
        Progress{states, m_transitions, m_explored, states - m_explored, m_depth},
        m_states->growth_bytes(ahead) + m_builder.growth_bytes(ahead));
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

Run run(ConfigurationTables& tables, RunOptions const& options) {
    return Runner(tables, options).run();
}

} // namespace Calder::StateSpace
