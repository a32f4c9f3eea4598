#pragma once

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/reached_states.h"
#include "state_space/machine/run_result.h"

namespace Calder::StateSpace {

/// How a run is cut up and its states are kept, on which its result does not depend.
struct Cut {
    /// Steps wanted of one job: what stays in a core's own cache, and makes handing it over cheap.
    std::uint64_t steps_of_job = 4096;
    /// Fewer jobs than these are done by one thread sooner than a team has met.
    std::uint64_t least_jobs_of_round = 4;
    /// Wider states are kept as the roots of a tree.
    std::uint32_t most_plain_words = ReachedStates::few_words;
};

/// Explores what the machine can do, breadth-first: states are numbered in the order in which they
/// are first reached, the transitions of a state ascending by event. An early end leaves what
/// `explore` would leave.
[[nodiscard]] Run run(ConfigurationTables& tables, RunOptions const& options, Cut const& cut = {});

} // namespace Calder::StateSpace
