#include "tests/refinement/naive_semantics.h"

namespace Calder::Refinement::Testing {

using ProcessCompiler::tau;
using ProcessCompiler::tick;

unsigned bit_of(unsigned event) {
    return event == a ? 1 : event == b ? 2 : 4;
}

unsigned set_of(std::vector<unsigned> const& events) {
    unsigned set = 0;
    for (unsigned const event : events) {
        set |= bit_of(event);
    }
    return set;
}

namespace {

bool can(Row const& row, unsigned event) {
    for (auto const& step : row) {
        if (step.first == event) {
            return true;
        }
    }
    return false;
}

std::set<unsigned> silent_successors(Rows const& rows, std::set<unsigned> const& states) {
    std::set<unsigned> found;
    for (unsigned const state : states) {
        for (auto const& [event, target] : rows[state]) {
            if (event == tau) {
                found.insert(target);
            }
        }
    }
    return found;
}

/// As many silent steps as there are states pass one state twice.
bool diverges(Rows const& rows, unsigned state) {
    std::set<unsigned> states{state};
    for (std::size_t step = 0; step < rows.size(); ++step) {
        states = silent_successors(rows, states);
    }
    return !states.empty();
}

class Denoting {
  public:
    Denoting(Rows const& rows, std::size_t longest) : m_rows(rows), m_longest(longest) {}

    void visit(unsigned state, Trace const& trace) {
        if (!m_visited.emplace(state, trace).second) {
            return;
        }
        found.failures[trace] |= refusals_of(m_rows[state]);
        if (diverges(m_rows, state)) {
            found.divergences.insert(trace);
        }
        for (auto const& [event, target] : m_rows[state]) {
            if (event == tau) {
                visit(target, trace);
            } else if (trace.size() < m_longest) {
                Trace longer = trace;
                longer.push_back(event);
                if (event == tick) {
                    found.failures[longer].set(); // everything is refused
                } else {
                    visit(target, longer);
                }
            }
        }
    }

    Denotation found;

  private:
    Rows const& m_rows;
    std::size_t m_longest;
    std::set<std::pair<unsigned, Trace>> m_visited;
};

} // namespace

Refusals refusals_of(Row const& row) {
    Refusals refused;
    for (unsigned set = 0; set < 8; ++set) {
        bool const is_possible = (set & bit_of(a) && can(row, a)) ||
                                 (set & bit_of(b) && can(row, b)) ||
                                 (set & bit_of(tick) && can(row, tick));
        if (!can(row, tau) && !is_possible) {
            refused.set(set);
        }
        if (can(row, tick) && !(set & bit_of(tick))) {
            refused.set(set);
        }
    }
    return refused;
}

bool is_on_loop(Rows const& rows, unsigned state) {
    std::set<unsigned> states{state};
    for (std::size_t step = 0; step < rows.size(); ++step) {
        states = silent_successors(rows, states);
        if (states.count(state) != 0) {
            return true;
        }
    }
    return false;
}

bool Denotation::diverges_up_to(Trace trace) const {
    for (;; trace.pop_back()) {
        if (divergences.count(trace) != 0) {
            return true;
        }
        if (trace.empty()) {
            return false;
        }
    }
}

Denotation denotation_of(Rows const& rows, std::size_t longest) {
    Denoting denoting(rows, longest);
    denoting.visit(0, {});
    return denoting.found;
}

bool refines(Denotation const& abstract, Denotation const& concrete, Model model) {
    bool const is_strict = model == Model::failures_divergences;
    for (auto const& [trace, refusals] : concrete.failures) {
        if (is_strict && abstract.diverges_up_to(trace)) {
            continue;
        }
        auto const known = abstract.failures.find(trace);
        if (known == abstract.failures.end()) {
            return false;
        }
        if (model != Model::traces && (refusals & ~known->second).any()) {
            return false;
        }
        if (is_strict && concrete.divergences.count(trace) != 0) {
            return false;
        }
    }
    return true;
}

bool is_deterministic(Denotation const& process) {
    for (auto const& [trace, refusals] : process.failures) {
        for (unsigned const event : {a, b, tick}) {
            Trace longer = trace;
            longer.push_back(event);
            if (process.failures.count(longer) != 0 && refusals[bit_of(event)]) {
                return false;
            }
        }
    }
    return process.divergences.empty();
}

bool has_deadlock(Rows const& rows) {
    std::set<unsigned> reached{0};
    std::vector<unsigned> rest{0};
    while (!rest.empty()) {
        Row const& row = rows[rest.back()];
        rest.pop_back();
        if (row.empty()) {
            return true;
        }
        for (auto const& [event, target] : row) {
            if (event != tick && reached.insert(target).second) {
                rest.push_back(target);
            }
        }
    }
    return false;
}

bool performs(Denotation const& process, unsigned event) {
    for (auto const& [trace, refusals] : process.failures) {
        if (!trace.empty() && trace.back() == event) {
            return true;
        }
    }
    return false;
}

FewestSteps fewest_steps(Rows const& concrete, Denotation const& abstract, Model model,
                         std::size_t longest) {
    bool const is_strict = model == Model::failures_divergences;
    FewestSteps fewest;
    auto const note = [](std::optional<std::size_t>& least, std::size_t steps) {
        least = std::min(least.value_or(steps), steps);
    };
    using Place = std::pair<unsigned, Trace>;
    std::set<Place> seen;
    std::set<Place> level{{0, {}}};
    for (std::size_t steps = 0; !level.empty(); ++steps) {
        std::set<Place> next;
        for (auto const& [state, trace] : level) {
            bool const is_beyond = abstract.failures.count(trace) == 0 ||
                                   (is_strict && abstract.diverges_up_to(trace));
            if (is_beyond || trace.size() >= longest || !seen.emplace(state, trace).second) {
                continue;
            }
            if (model != Model::traces &&
                (refusals_of(concrete[state]) & ~abstract.failures.at(trace)).any()) {
                note(fewest.any_other, steps);
            }
            if (is_strict && is_on_loop(concrete, state)) {
                note(fewest.divergence, steps);
            }
            for (auto const& [event, target] : concrete[state]) {
                Trace longer = trace;
                if (event != tau) {
                    longer.push_back(event);
                }
                if (abstract.failures.count(longer) == 0) {
                    note(fewest.any_other, steps + 1);
                }
                if (event != tick) {
                    next.emplace(target, longer);
                }
            }
        }
        level = std::move(next);
    }
    return fewest;
}

Denotation deterministic_part(Denotation const& process) {
    Denotation part;
    for (auto const& [trace, refusals] : process.failures) {
        Trace const before(trace.begin(), trace.empty() ? trace.end() : trace.end() - 1);
        if (!trace.empty() && process.failures.at(before)[bit_of(trace.back())]) {
            continue;
        }
        unsigned possible = 0;
        for (unsigned const event : {a, b, tick}) {
            Trace longer = trace;
            longer.push_back(event);
            possible |= process.failures.count(longer) != 0 ? set_of({event}) : 0;
        }
        for (unsigned set = 0; set < 8; ++set) {
            part.failures[trace][set] = (set & possible) == 0;
        }
    }
    return part;
}

std::set<unsigned> states_after(Rows const& rows, std::vector<unsigned> const& events) {
    std::set<unsigned> states{0};
    for (unsigned const wanted : events) {
        std::set<unsigned> next;
        for (unsigned const state : states) {
            for (auto const& [event, target] : rows[state]) {
                if (event == wanted) {
                    next.insert(target);
                }
            }
        }
        states = std::move(next);
    }
    return states;
}

} // namespace Calder::Refinement::Testing
