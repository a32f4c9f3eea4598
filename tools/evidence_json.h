#pragma once

#include "tools/answered.h"
#include "tools/json_writer.h"

namespace Calder::Tools {

/// The same for programs: the members of an object that has begun, from `reason` on.
void write_evidence_json(Answered const& answered, JsonWriter& json);

} // namespace Calder::Tools
