#pragma once

#include "tools/run_names.h"

#include <string>
#include <vector>

namespace Calder::Tools {

/// A line for each step: the event and who takes part, of a silent one what was hidden or linked in it:
/// `tau (put.3: SENDER, MEDIUM)`. What repeats is told once, with how often it comes. The title stands
/// in front of the first line.
std::string step_lines(char const* title, std::vector<Refinement::EvidenceStep> const& steps,
                       RunNames& names);

/// "at the start", "after 1 step".
std::string after(std::size_t steps);

/// The width of a column that others stand behind, lest they move with every word.
constexpr std::size_t least_column_width = 15;

} // namespace Calder::Tools
