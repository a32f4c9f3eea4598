#pragma once

#include "tools/json_writer.h"
#include "tools/run_names.h"

#include <vector>

namespace Calder::Tools {

/// @{
/// Members of the object that is being written, with what people call the steps and components of a run.
void write_events(char const* name, std::vector<unsigned> const& events, RunNames const& names,
                  JsonWriter& json);
void write_steps(char const* name, std::vector<Refinement::EvidenceStep> const& steps,
                 RunNames& names, JsonWriter& json);
/// `waiting` and `cycle`; neither where nobody knows who waits.
void write_waiting(std::vector<Refinement::Waiting> const& waiting,
                   Refinement::RunState const& state, RunNames& names, JsonWriter& json);
/// @}

} // namespace Calder::Tools
