#pragma once

#include "process_compiler/process.h"
#include "process_compiler/recursion_watch.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

/// Asks the arguments one after the other for their transitions, while `moving` tells the visitor
/// whose they are. Returns false, at once, when one of them does.
[[nodiscard]] inline bool visit_each(ProcessArray const& arguments, unsigned& moving,
                                     NamedProcessSource const& source,
                                     TransitionVisitor const& visitor) {
    watch_recursion();
    for (moving = 0; moving < arguments.size(); ++moving) {
        if (!visit_argument(arguments[moving], source, visitor)) {
            return false;
        }
    }
    return true;
}

} // namespace Calder::ProcessCompiler::CSP
