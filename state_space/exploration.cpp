#include "state_space/exploration.h"

#include "process_compiler/recursion_watch.h"
#include "state_space/component_memory.h"
#include "state_space/lts_builder.h"
#include "state_space/stack_guard.h"
#include "state_space/state_table.h"
#include "state_space/watched_exploration.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace Calder::StateSpace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::Process;
using ProcessCompiler::ProcessPointer;
using ProcessCompiler::TransitionVisitor;

namespace {

class Explorer {
  public:
    Explorer(NamedProcessSource const& source, SearchMonitor& monitor)
        : m_source(source), m_monitor(monitor) {}

    Exploration run(ProcessPointer const& start) {
        try {
            ProcessCompiler::RecursionWatch const watch(m_stack.lowest(),
                                                        [this] { look_between_reports(); });
            ProcessCompiler::MemoryInUse const in_use(m_components);
            explore_from(start);
        } catch (std::bad_alloc const&) {
            m_monitor.stop(Outcome::memory_limit);
        } catch (ProcessCompiler::NestedTooDeeply const&) {
            m_monitor.stop(Outcome::nesting_limit);
        } catch (SearchEnded const&) { // the monitor knows why
        }
        return {m_builder.finish(m_states.size()), m_monitor.outcome()};
    }

  private:
    /// A transition that was reported, and whose target is still to be found.
    struct Taken {
        unsigned event = 0;
        std::uint64_t hash = 0;
        ProcessPointer successor;
        StateNumber candidate = no_state;
    };

    void explore_from(ProcessPointer const& start);
    void visit(Process const& term, TransitionVisitor const& visitor);
    bool take(unsigned event, ProcessPointer const& successor);
    void settle();
    void settle(unsigned event, ProcessPointer const& successor);
    bool look_around();
    void look_between_reports();

    NamedProcessSource const& m_source;
    SearchMonitor& m_monitor;
    StackGuard const m_stack{};
    StateTable m_states;
    ComponentMemory m_components{m_states};
    LtsBuilder m_builder;
    std::array<Taken, 32> m_taken;
    std::size_t m_taken_count = 0;
    bool m_is_too_deep = false;
    StateNumber m_depth = 0;
};

void Explorer::explore_from(ProcessPointer const& start) {
    if (m_states.find_or_add(start, m_monitor.max_states()) == no_state) {
        m_monitor.stop(Outcome::state_limit);
        return;
    }
    // One reference fits into the function object itself, so neither making nor calling it
    // allocates.
    TransitionVisitor const visitor = [this](unsigned event, ProcessPointer const& successor) {
        return take(event, successor);
    };
    StateNumber level_end = 1;
    for (StateNumber state = 0; state < m_states.size(); ++state) {
        if (state == level_end) {
            ++m_depth;
            level_end = m_states.size();
        }
        Process const& term = *m_states.term(state);
        visit(term, visitor);
        if (m_monitor.outcome() != Outcome::complete) {
            return;
        }
        m_builder.end_row();
    }
}

/// All transitions of the term, or up to where something ends the search: what was reported until
/// then counts.
void Explorer::visit(Process const& term, TransitionVisitor const& visitor) {
    try {
        term.visit_transitions(m_source, visitor);
    } catch (...) {
        settle();
        throw;
    }
    settle();
    if (m_is_too_deep && m_monitor.outcome() == Outcome::complete) {
        m_monitor.stop(Outcome::nesting_limit);
    }
}

/// The visitor: what happens for each transition of the state that is being explored. It runs at
/// the deepest point of the recursion through the term, so this is the place to watch the stack,
/// before the successor, which may be as deep, is hashed.
bool Explorer::take(unsigned event, ProcessPointer const& successor) {
    if (m_is_too_deep || m_monitor.outcome() != Outcome::complete) {
        return false; // some constructs go on after they were told to stop
    }
    if (m_stack.is_low()) {
        m_is_too_deep = true; // what was taken is settled where there is stack for it
        return false;
    }
    std::uint64_t const hash = hash_of(successor);
    m_states.prefetch(hash);
    m_taken[m_taken_count++] = Taken{event, hash, successor};
    if (m_taken_count == m_taken.size()) {
        settle();
    }
    return m_monitor.outcome() == Outcome::complete;
}

/// Finds the states of what was taken, in that order. One by one, each would wait for memory
/// several times, as most of what is compared lies anywhere in all that was found.
void Explorer::settle() {
    auto const begin = m_taken.begin();
    auto const end = begin + static_cast<std::ptrdiff_t>(std::exchange(m_taken_count, 0));
    std::for_each(begin, end, [this](Taken& taken) {
        taken.candidate = m_states.prefetch_candidate(taken.hash);
    });
    std::for_each(begin, end,
                  [this](Taken const& taken) { m_states.prefetch_term(taken.candidate); });
    std::for_each(begin, end,
                  [this](Taken const& taken) { m_states.prefetch_arguments(taken.candidate); });
    for (auto taken = begin; taken != end && m_monitor.outcome() == Outcome::complete; ++taken) {
        settle(taken->event, taken->successor);
        taken->successor.reset();
    }
}

void Explorer::settle(unsigned event, ProcessPointer const& successor) {
    StateNumber const target = m_states.find_or_add(successor, m_monitor.max_states());
    if (target == no_state) {
        m_monitor.stop(Outcome::state_limit);
        return;
    }
    m_builder.add(event, target);
    if (m_monitor.is_due()) {
        look_around();
    }
}

bool Explorer::look_around() {
    StateNumber const states = m_states.size();
    StateNumber const explored = m_builder.explored_count();
    std::uint64_t const ahead = m_monitor.work_ahead();
    return m_monitor.look_around(
        Progress{states, m_builder.transition_count(), explored, states - explored, m_depth},
        m_states.growth_bytes(ahead) + m_components.growth_bytes(ahead) +
            m_builder.growth_bytes(ahead));
}

/// An operator that synchronises collects what its arguments offer, which may take hours, before
/// anything is reported. Ends the search from within.
void Explorer::look_between_reports() {
    if (m_monitor.is_overdue()) {
        settle();
        if (m_monitor.outcome() != Outcome::complete || !look_around()) {
            throw SearchEnded();
        }
    }
}

} // namespace

Exploration explore(ProcessPointer const& start, NamedProcessSource const& source,
                    ExplorationOptions const& options) {
    SearchMonitor monitor(options, SearchMonitor::longest_for_terms);
    return explore(start, source, monitor);
}

Exploration explore(ProcessPointer const& start, NamedProcessSource const& source,
                    SearchMonitor& monitor) {
    return Explorer(source, monitor).run(start);
}

} // namespace Calder::StateSpace
