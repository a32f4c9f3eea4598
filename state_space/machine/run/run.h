#pragma once

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run_result.h"

namespace Calder::StateSpace {

/// Explores what the machine can do, breadth-first: states are numbered in the order in which they
/// are first reached, the transitions of a state ascending by event. An early end leaves what
/// `explore` would leave.
[[nodiscard]] Run run(ConfigurationTables& tables, RunOptions const& options, Cut const& cut = {});

} // namespace Calder::StateSpace
