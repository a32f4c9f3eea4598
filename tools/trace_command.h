#pragma once

#include "tools/input.h"

#include <string>

namespace Calder::Tools {

struct TraceOptions {
    Input input;
    /// `-` for standard input.
    std::string trace;
    bool json = false;
};

/// `calder trace`: goes through a trace that LTSmin wrote by the machine of the process, and tells it.
int tell_trace(TraceOptions const& options);

} // namespace Calder::Tools
