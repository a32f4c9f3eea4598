#pragma once

#include "refinement/evidence.h"
#include "refinement/export.h"
#include "refinement/running_machine.h"

namespace Calder::Refinement {

/// What is compared. Roscoe, The Theory and Practice of Concurrency, 1997, chapter 8: T, F and N.
enum class Model { traces, failures, failures_divergences };

/// What is answered; `undecided` where a limit or a wish to stop came first.
enum class Verdict { holds, fails, undecided };

/// The limits of a question, and by which engine it is answered.
struct QuestionOptions : StateSpace::ExplorationOptions {
    /// Where a process has a machine, it runs; otherwise, and always when this is false, one goes from
    /// term to term.
    bool by_machine = true;
    /// How many threads search a machine, at least 1; where there is little to search, one of them does. The
    /// answer does not depend on it, but for where a limit on memory or whoever watches ends a search.
    unsigned threads = 1;
};

/// What a question comes to, and why.
struct Answer {
    /// The outcome and the evidence say why.
    Verdict verdict = Verdict::undecided;
    /// Why it is undecided or, where it is decided, why there is no evidence; `complete` otherwise.
    StateSpace::Outcome outcome = StateSpace::Outcome::complete;
    /// Why it fails; of a trace, why it holds or how far it goes.
    Evidence evidence{};
    /// @{
    /// Of the concrete side: its states, as often as the abstract side is in a different node with them,
    /// and what they do. What stands behind a tick is not among them.
    StateNumber state_count = 0;
    std::uint64_t transition_count = 0;
    /// @}
    /// What all of them took in memory, and the way back with them, in bytes.
    std::uint64_t memory_bytes = 0;
    /// Of the concrete side: what the slots and leaves of the evidence refer to. Null where it went from
    /// term to term.
    RunningMachine machine{};
    /// @{
    /// Why a side has no machine although one was wanted.
    NoMachine abstract_without_machine{};
    NoMachine concrete_without_machine{};
    /// @}
};

// The questions. A state that can tick can refuse everything else, stable or not; nothing behind a tick
// counts, and tick is an event of traces. The same question gets the same answer every time, with the
// same evidence. Limits, as those of `explore`, count for both sides together but for `max_states`,
// which counts for each; an answer that a limit prevents is undecided. Nothing is thrown but what a
// maker of instances throws. The demands on `source` are those of `explore`.

/// Whether every trace of the concrete term is one of the abstract one; in `failures`, every stable
/// failure, too; in `failures_divergences`, every failure and divergence, where below a divergence of
/// the abstract term everything is allowed.
[[nodiscard]] CALDER_REFINEMENT_EXPORT Answer
refinement(ProcessCompiler::ProcessPointer const& abstract,
           ProcessCompiler::ProcessPointer const& concrete, Model model,
           ProcessCompiler::NamedProcessSource const& source, QuestionOptions const& options = {});

/// No reachable state is without transitions, but for the end after a tick.
[[nodiscard]] CALDER_REFINEMENT_EXPORT Answer deadlock_free(
    ProcessCompiler::ProcessPointer const& term, ProcessCompiler::NamedProcessSource const& source,
    QuestionOptions const& options = {});

/// No infinite sequence of silent steps is reachable.
[[nodiscard]] CALDER_REFINEMENT_EXPORT Answer divergence_free(
    ProcessCompiler::ProcessPointer const& term, ProcessCompiler::NamedProcessSource const& source,
    QuestionOptions const& options = {});

/// It does not diverge, and never can both do and refuse an event after the same trace.
[[nodiscard]] CALDER_REFINEMENT_EXPORT Answer deterministic(
    ProcessCompiler::ProcessPointer const& term, ProcessCompiler::NamedProcessSource const& source,
    QuestionOptions const& options = {});

/// `trace` is a trace of the term: visible events, at the end perhaps tick. The evidence is a run that
/// has it, with the reason `none`; otherwise one that has as much of it as any, and the reason `event`.
[[nodiscard]] CALDER_REFINEMENT_EXPORT Answer
has_trace(ProcessCompiler::ProcessPointer const& term, std::vector<unsigned> const& trace,
          ProcessCompiler::NamedProcessSource const& source, QuestionOptions const& options = {});

/// No reachable state performs one of the events, tick perhaps among them; tau is not looked at.
[[nodiscard]] CALDER_REFINEMENT_EXPORT Answer
never(ProcessCompiler::ProcessPointer const& term, BitSet const& events,
      ProcessCompiler::NamedProcessSource const& source, QuestionOptions const& options = {});

} // namespace Calder::Refinement
