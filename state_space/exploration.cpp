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
    /// A transition that was reported, and whose target is still to be found; without a successor, the
    /// end of a row.
    struct Taken {
        unsigned event = 0;
        ProcessPointer successor;
        StateTable::Sought sought;
    };

    void explore_from(ProcessPointer const& start);
    bool visit(Process const& term, TransitionVisitor const& visitor);
    bool take(unsigned event, ProcessPointer const& successor);
    void end_row();
    void settle();
    void prefetch(Taken* begin, Taken* end) const;
    void settle(Taken const& taken);
    void prefetch_after(StateNumber state) const;
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
        prefetch_after(state);
        if (!visit(*m_states.term(state), visitor)) {
            return;
        }
        end_row();
        if (state + 1 == level_end) {
            settle(); // which finds the next level
        }
    }
}

/// All transitions of the term, or up to where something ends the search: what was reported until
/// then counts. Whether the search goes on.
bool Explorer::visit(Process const& term, TransitionVisitor const& visitor) {
    try {
        term.visit_transitions(m_source, visitor);
    } catch (...) {
        settle();
        if (m_monitor.outcome() == Outcome::complete) {
            throw;
        }
    }
    if (m_is_too_deep) {
        settle();
        if (m_monitor.outcome() == Outcome::complete) {
            m_monitor.stop(Outcome::nesting_limit);
        }
    }
    return m_monitor.outcome() == Outcome::complete;
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
    StateTable::Sought const sought = m_states.seek(hash_of(successor));
    Taken& taken = m_taken[m_taken_count++];
    taken.event = event;
    taken.successor = successor;
    taken.sought = sought;
    if (m_taken_count == m_taken.size()) {
        settle();
    }
    return m_monitor.outcome() == Outcome::complete;
}

/// In its place among what was taken, as its transitions may be still there.
void Explorer::end_row() {
    ++m_taken_count; // nothing that was settled has a successor
    if (m_taken_count == m_taken.size()) {
        settle();
    }
}

/// Finds the states of what was taken, in that order. One by one, each would wait for memory
/// several times, as most of what is compared lies anywhere in all that was found.
void Explorer::settle() {
    constexpr std::ptrdiff_t few = 3; // come too late for each other
    Taken* const begin = m_taken.data();
    Taken* const end = begin + std::exchange(m_taken_count, 0);
    if (end - begin > few) {
        prefetch(begin, end);
    }
    for (Taken* taken = begin; taken != end && m_monitor.outcome() == Outcome::complete; ++taken) {
        if (taken->successor) {
            settle(*taken);
            taken->successor.reset();
            taken->sought.argument = nullptr;
        } else {
            m_builder.end_row();
        }
    }
}

/// Each step for all of them, as the next one needs what it brings.
void Explorer::prefetch(Taken* begin, Taken* end) const {
    std::for_each(begin, end, [this](Taken& taken) {
        if (taken.successor) {
            m_states.find_candidate(taken.sought);
        }
    });
    std::for_each(begin, end, [this](Taken const& taken) {
        if (taken.successor) {
            m_states.prefetch_term(taken.sought.candidate);
        }
    });
    std::for_each(begin, end, [this](Taken& taken) {
        if (taken.successor) {
            m_states.find_argument(taken.sought, *taken.successor);
        }
    });
    std::for_each(begin, end, [](Taken const& taken) {
        StateTable::prefetch_arguments_of(taken.sought.argument);
    });
}

void Explorer::settle(Taken const& taken) {
    StateNumber const target =
        m_states.find_or_add(taken.successor, taken.sought, m_monitor.max_states());
    if (target == no_state) {
        m_monitor.stop(Outcome::state_limit);
        return;
    }
    m_builder.add(taken.event, target);
    if (m_monitor.is_due()) {
        look_around();
    }
}

/// What visiting the next states will read. They were found one after another, but consist of what
/// others left free.
void Explorer::prefetch_after(StateNumber state) const {
    constexpr StateNumber terms_ahead = 4;
    constexpr StateNumber arguments_ahead = 2;
    if (state + terms_ahead < m_states.size()) {
        m_states.prefetch_term(state + terms_ahead);
        Process const& term = *m_states.term(state + arguments_ahead);
        if (term.argument_count() > 0) {
            __builtin_prefetch(term.argument(0).get());
        }
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
