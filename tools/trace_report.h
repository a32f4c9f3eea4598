#pragma once

#include "tools/followed_trace.h"
#include "tools/json_writer.h"

#include <string>

namespace Calder::Tools {

/// For people: the steps with who takes part in each, and what comes of the last one.
std::string trace_text(FollowedTrace const& trace, TracedMachine const& machine);

/// For programs: one JSON object.
void write_trace_json(FollowedTrace const& trace, TracedMachine const& machine, JsonWriter& json);

} // namespace Calder::Tools
