#pragma once

#include "state_space/export.h"
#include "state_space/machine/compile/compile.h"
#include "state_space/machine/run_result.h"

#include <optional>

namespace Calder::StateSpace {

class ConfigurationTables;

/// An exploration by the machine that a term compiles to.
struct MachineExploration {
    /// Of the machine; of the terms where there is none.
    Run run;
    /// Null when there is no machine to ask: the term was refused, or it is one leaf and was
    /// explored as it stands.
    std::unique_ptr<Machine const> machine;
    /// For the questions below; null where there is no machine.
    std::shared_ptr<ConfigurationTables> tables;
    /// The recursion that no machine can follow, if that was the reason.
    std::vector<RefusedRecursion> refused;
    /// Why the terms were explored and there is no machine, a part of a sentence; empty where there
    /// is one, was none to be had, or none was needed.
    std::string why_by_terms;
};

/// A machine to be run, or why there is none.
struct MachineCompilation {
    /// Null where it is refused, and where the term is one leaf.
    std::unique_ptr<Machine const> machine;
    /// The term is one leaf, which is explored as it stands: there is nothing to refuse.
    bool is_one_leaf = false;
    /// What the terms are, explored within the options: a leaf is much larger than the few of its
    /// states that the rest of the term lets it reach. The refusal says which.
    std::optional<Exploration> explored{};
    /// Whoever watches ended it.
    bool is_interrupted = false;
    /// A part of a sentence.
    std::string refusal{};
    /// The recursion that no machine can follow, if that was the reason.
    std::vector<RefusedRecursion> refused{};
};

/// Compiles the term within a part of the memory, so that there is enough left to do without.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT MachineCompilation compile_for_run(
    ProcessCompiler::ProcessPointer const& start, ProcessCompiler::NamedProcessSource const& source,
    ExplorationOptions const& options);

/// Compiles the term and runs the machine. Where that is refused, `run.refusal` says why, and
/// nothing was explored. Exceptions of a maker of instances pass through; the machine runs when all
/// are made.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT MachineExploration
explore_by_machine(ProcessCompiler::ProcessPointer const& start,
                   ProcessCompiler::NamedProcessSource const& source, RunOptions const& options);

/// The leaves that run at the start, slot by slot. There must be a machine.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::vector<std::uint32_t>
start_leaves(MachineExploration const& exploration);

/// How many configurations were met; at least 1. There must be a machine.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::size_t
configurations_met(MachineExploration const& exploration);

/// The leaves that run in a state, slot by slot. There must be a machine, and a run that kept the
/// transitions: a state that was only counted may have no number.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::vector<std::uint32_t>
leaves_in(MachineExploration const& exploration, StateNumber state);

/// Which of them take part in the step to `target` with `event`: the slots, ascending, by the first
/// rule that leads so; it must be a step that was explored, and kept. Empty when no leaf takes part.
[[nodiscard]] CALDER_STATE_SPACE_EXPORT std::vector<std::uint32_t>
slots_taking_part(MachineExploration const& exploration, StateNumber source, unsigned event,
                  StateNumber target);

} // namespace Calder::StateSpace
