#pragma once

#include "state_space/exploration.h"
#include "state_space/search_monitor.h"

namespace Calder::StateSpace {

/// `explore` as one of several searches that are watched together.
[[nodiscard]] Exploration explore(ProcessCompiler::ProcessPointer const& start,
                                  ProcessCompiler::NamedProcessSource const& source,
                                  SearchMonitor& monitor);

} // namespace Calder::StateSpace
