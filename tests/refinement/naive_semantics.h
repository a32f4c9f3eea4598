#pragma once

#include "refinement/questions.h"
#include "tests/state_space/graph_terms.h"

#include <bitset>
#include <map>
#include <optional>
#include <set>

namespace Calder::Refinement::Testing {

using StateSpace::Testing::Row;
using StateSpace::Testing::Rows;

using Trace = std::vector<unsigned>;

constexpr unsigned a = ProcessCompiler::first_visible_event;
constexpr unsigned b = a + 1;

/// Events that may be refused: a, b and tick. A set of them is a number below 8.
using Refusals = std::bitset<8>;
unsigned bit_of(unsigned event);
unsigned set_of(std::vector<unsigned> const& events);

/// What a system with the events tau, tick, a and b means, written down as the definitions say, up to
/// traces of some length. It shares no code with what it checks.
struct Denotation {
    /// All traces, each with all that can be refused after it.
    std::map<Trace, Refusals> failures;
    /// The traces after which it can go on silently for ever; not what follows them.
    std::set<Trace> divergences;

    bool diverges_up_to(Trace trace) const;
};

Denotation denotation_of(Rows const& rows, std::size_t longest);

bool refines(Denotation const& abstract, Denotation const& concrete, Model model);
bool is_deterministic(Denotation const& process);
bool has_deadlock(Rows const& rows);
bool performs(Denotation const& process, unsigned event);

/// The fewest steps to where the concrete side does what the abstract one may not: performs an event or
/// refuses something, as the model has it; in `divergence`, goes round silently.
struct FewestSteps {
    std::optional<std::size_t> any_other;
    std::optional<std::size_t> divergence;

    std::optional<std::size_t> any() const {
        return any_other && divergence ? std::min(any_other, divergence)
                                       : (any_other ? any_other : divergence);
    }
};
FewestSteps fewest_steps(Rows const& concrete, Denotation const& abstract, Model model,
                         std::size_t longest);

/// What of a process is deterministic: no event that can be refused in its place, and nothing refused that
/// can come. A process is where it does more than may be that it is not deterministic.
Denotation deterministic_part(Denotation const& process);

/// The states in which the concrete side can be after exactly these events, tau among them.
std::set<unsigned> states_after(Rows const& rows, std::vector<unsigned> const& events);

/// What the state can refuse when it settles; nothing where it never does.
Refusals refusals_of(Row const& row);

/// The state is on a loop of silent steps.
bool is_on_loop(Rows const& rows, unsigned state);

} // namespace Calder::Refinement::Testing
