#include "process_compiler/transition_memory.h"

#include "process_compiler/recursion_watch.h"

namespace Calder::ProcessCompiler {

constinit thread_local TransitionMemory* transition_memory = nullptr;

namespace {

/// Some constructs go on after they were told to stop, so only the term itself knows what it still
/// reports after the transition at `index`, for which the visitor answered false, and what it
/// returns.
bool go_on_without_memory(std::size_t index, Process const& term, NamedProcessSource const& source,
                          TransitionVisitor const& visitor) {
    struct {
        TransitionVisitor const& visitor;
        std::size_t known_answers; // true for all of them but the last
    } rest{visitor, index + 1};
    return term.visit_transitions(source, [&rest](unsigned event, ProcessPointer const& successor) {
        return rest.known_answers > 0 ? --rest.known_answers > 0 : rest.visitor(event, successor);
    });
}

} // namespace

bool visit_remembered(std::span<Step const> steps, Process const& term,
                      NamedProcessSource const& source, TransitionVisitor const& visitor) {
    watch_recursion();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (!visitor(steps[i].first, steps[i].second)) {
            return go_on_without_memory(i, term, source, visitor);
        }
    }
    return true;
}

} // namespace Calder::ProcessCompiler
