#pragma once

#include "state_space/search_monitor.h"

namespace Calder::Tools {

/// For programs: what ended a search early; empty where nothing did.
char const* limit_name(StateSpace::Outcome outcome);

} // namespace Calder::Tools
