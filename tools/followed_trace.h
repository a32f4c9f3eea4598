#pragma once

#include "pins/vector_machine.h"
#include "refinement/evidence.h"
#include "refinement/running_machine.h"
#include "tools/run_names.h"
#include "tools/trace_rows.h"

#include <optional>
#include <vector>

namespace Calder::Tools {

/// A trace gone through by the machine that it is of.
struct FollowedTrace {
    std::vector<Refinement::EvidenceStep> steps{};
    /// In which the steps end.
    Refinement::RunState end{};
    /// What can happen there, ascending, each event once.
    std::vector<unsigned> offered{};
    /// Nothing can, because the process has ended.
    bool has_ended = false;
    /// After so many of the steps the state was met in which they end, if it was.
    std::optional<std::size_t> loop_start{};

    bool is_deadlock() const { return offered.empty() && !has_ended; }
};

/// The machine that a trace is to be of, and what people call it.
struct TracedMachine {
    std::string const& name;
    Refinement::RunningMachine const& running;
    Pins::VectorMachine const& vectors;
    RunNames& names;
};

/// Goes through the trace. Each row is the state in which the machine then is, and each step one that
/// it can do; otherwise, and where the file is no trace, throws TraceError. Throws SearchEnded when the
/// monitor says so, and what `TraceRows` throws.
FollowedTrace follow_trace(std::FILE* file, std::string const& name, TracedMachine const& machine,
                           StateSpace::SearchMonitor& monitor);

} // namespace Calder::Tools
