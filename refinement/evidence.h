#pragma once

#include "process_compiler/process.h"
#include "state_space/labelled_transition_system.h"
#include "state_space/machine/participant.h"

#include <vector>

namespace Calder::Refinement {

using StateSpace::StateNumber;

/// What happened that decides a question.
enum class Reason {
    /// Nothing: it holds, and there is nothing to show.
    none,
    /// The last step performs an event that must not come there.
    event,
    /// The last state refuses more than the abstract side ever does after that trace.
    refusal,
    /// The last state is on a loop of silent steps.
    divergence,
    /// Nothing can happen in the last state.
    deadlock,
    /// Of two runs with one trace, one performs an event that the other ends up refusing.
    nondeterminism,
};

/// A leaf that runs in a machine, and the state that it is in.
struct SlotState {
    /// Member by member.
    bool operator==(SlotState const&) const = default;

    /// Its number among the leaves of the machine.
    std::uint32_t leaf;
    /// Of the leaf, not of the machine.
    StateNumber state;
};

/// One state on the way.
struct RunState {
    /// Within one list of steps equal numbers are equal states.
    StateNumber number = 0;
    /// By slot; empty where there is no machine.
    std::vector<SlotState> slots{};
    /// Where there is no machine: the state as a term.
    ProcessCompiler::ProcessPointer term{};
    /// Of the machine: which leaf stands where, and what the constructs allow. 0 where there is none.
    StateSpace::ConfigurationNumber configuration = 0;
};

/// One step of a run, tau included.
struct EvidenceStep {
    /// What the whole performs; 1 for a silent step.
    unsigned event = 0;
    /// Where the step begins.
    RunState source{};
    /// The number of the state in which it ends.
    StateNumber target = 0;
    /// The slots of the source that take part, ascending, each with what its leaf performs. Empty
    /// where there is no machine.
    std::vector<StateSpace::Participant> participants{};
    /// Of a tau, what was hidden in it, or ended; two events where they were linked. Empty where the
    /// machine's rules do not tell, as when a leaf goes on silently by itself.
    std::vector<unsigned> inner_events{};
};

/// A shortest run of the concrete side, by number of steps, to where a question is decided, and what
/// matters there. The same every time. Longer than others only where showing these would take more than
/// deciding the question did: of a loop that closes far beyond (see `PairSearch`), and of nondeterminism
/// where sets of states are many (see `UniformityObserver`).
struct Evidence {
    /// Which of the members below say something.
    Reason reason = Reason::none;
    /// From the start; none where the start decides.
    std::vector<EvidenceStep> steps{};
    /// In which the steps end.
    RunState end{};
    /// The event that must not come or, where the question was for a trace, that should have; of
    /// nondeterminism, the one that is performed and refused.
    unsigned event = 0;
    /// Of an event that the abstract side does not allow: all that it allows after that trace.
    std::vector<unsigned> allowed{};
    /// Of a refusal: the events of which the last state takes one, refusing all others; it stands for
    /// all refusals of the run. Of a trace that does not exist: what can come after its longest
    /// beginning. Of nondeterminism: what is taken where the event is refused.
    std::vector<unsigned> offered{};
    /// Of a refusal: the smallest sets of events that the abstract side accepts after that trace, none of
    /// which is offered whole. None where it never settles.
    std::vector<std::vector<unsigned>> demanded{};
    /// Of a divergence: the silent steps from the last state back to it.
    std::vector<EvidenceStep> loop{};
    /// Of nondeterminism: another run with the same trace. One of both ends in the event, the other in
    /// a state that refuses it.
    std::vector<EvidenceStep> other{};
    /// In which the steps of the other run end.
    RunState other_end{};
    /// Which one: the other.
    bool other_performs = false;
};

} // namespace Calder::Refinement
