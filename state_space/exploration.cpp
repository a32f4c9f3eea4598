#include "state_space/exploration.h"

#include "state_space/lts_builder.h"
#include "state_space/memory.h"
#include "state_space/stack_guard.h"
#include "state_space/state_table.h"

#include <algorithm>
#include <chrono>
#include <new>

namespace Calder::StateSpace {

using ProcessCompiler::NamedProcessSource;
using ProcessCompiler::Process;
using ProcessCompiler::ProcessPointer;
using ProcessCompiler::TransitionVisitor;

namespace {

using Clock = std::chrono::steady_clock;

/// Transitions between two looks at memory and progress. A look costs some microseconds.
constexpr unsigned first_interval = 64;
constexpr unsigned longest_interval = 4096;
/// Terms may be so large that 4096 steps take seconds and gigabytes: looks further apart than this
/// are made more often.
constexpr std::chrono::milliseconds wanted_between_looks(10);

class Explorer {
  public:
    Explorer(NamedProcessSource const& source, ExplorationOptions const& options)
        : m_source(source), m_options(options) {}

    Exploration run(ProcessPointer const& start) {
        try {
            explore_from(start);
        } catch (std::bad_alloc const&) {
            m_outcome = Outcome::memory_limit;
        }
        return {m_builder.finish(m_states.size()), m_outcome};
    }

  private:
    void explore_from(ProcessPointer const& start);
    bool take(unsigned event, ProcessPointer const& successor);
    bool look_around();
    bool is_memory_short(std::uint64_t resident) const;

    bool stop(Outcome outcome) {
        m_outcome = outcome;
        return false;
    }

    NamedProcessSource const& m_source;
    ExplorationOptions const& m_options;
    StackGuard const m_stack{};
    StateTable m_states;
    LtsBuilder m_builder;
    Outcome m_outcome = Outcome::complete;
    StateNumber m_depth = 0;

    unsigned m_until_look = first_interval;
    unsigned m_interval = first_interval;
    Clock::time_point m_last_look = Clock::now();
};

void Explorer::explore_from(ProcessPointer const& start) {
    if (m_states.find_or_add(start, m_options.max_states) == no_state) {
        stop(Outcome::state_limit);
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
        term.visit_transitions(m_source, visitor);
        if (m_outcome != Outcome::complete) {
            return;
        }
        m_builder.end_row();
    }
}

/// The visitor: what happens for each transition of the state that is being explored. It runs at
/// the deepest point of the recursion through the term, so this is the place to watch the stack,
/// before the successor, which may be as deep, is hashed.
bool Explorer::take(unsigned event, ProcessPointer const& successor) {
    if (m_outcome != Outcome::complete) {
        return false; // some constructs go on after they were told to stop
    }
    if (m_stack.is_low()) {
        return stop(Outcome::nesting_limit);
    }
    StateNumber const target = m_states.find_or_add(successor, m_options.max_states);
    if (target == no_state) {
        return stop(Outcome::state_limit);
    }
    m_builder.add(event, target);
    return --m_until_look != 0 || look_around();
}

bool Explorer::look_around() {
    std::uint64_t const resident = resident_bytes();
    if (is_memory_short(resident)) {
        return stop(Outcome::memory_limit);
    }
    StateNumber const states = m_states.size();
    StateNumber const explored = m_builder.explored_count();
    if (m_options.progress &&
        !m_options.progress(Progress{states, m_builder.transition_count(), explored,
                                     states - explored, m_depth, resident})) {
        return stop(Outcome::interrupted);
    }
    Clock::time_point const now = Clock::now();
    m_interval = now - m_last_look > wanted_between_looks
                     ? std::max(m_interval / 2, 1U)
                     : std::min(m_interval * 2, longest_interval);
    m_until_look = m_interval;
    m_last_look = now;
    return true;
}

/// Whether the limit would be passed before the next look, by what is there and by the arrays that
/// are about to be copied.
bool Explorer::is_memory_short(std::uint64_t resident) const {
    return m_options.max_memory != 0 && resident + m_states.growth_bytes(longest_interval) +
                                                m_builder.growth_bytes(longest_interval) >
                                            m_options.max_memory;
}

} // namespace

std::string_view describe(Outcome outcome) {
    switch (outcome) {
    case Outcome::complete: return "every state was explored";
    case Outcome::state_limit: return "the limit on states was reached";
    case Outcome::memory_limit: return "the limit on memory was reached";
    case Outcome::nesting_limit: return "the process nests too deeply for the stack";
    case Outcome::interrupted: return "it was interrupted";
    }
    return "";
}

Exploration explore(ProcessPointer const& start, NamedProcessSource const& source,
                    ExplorationOptions const& options) {
    return Explorer(source, options).run(start);
}

} // namespace Calder::StateSpace
