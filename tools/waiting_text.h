#pragma once

#include "tools/run_names.h"

#include <string>
#include <vector>

namespace Calder::Tools {

/// A line for each component of a deadlocked state: what it waits for, and who could give that; and if
/// the waiting goes round, a line with those that wait for each other.
std::string waiting_text(std::vector<Refinement::Waiting> const& waiting,
                         Refinement::RunState const& state, RunNames& names);

} // namespace Calder::Tools
