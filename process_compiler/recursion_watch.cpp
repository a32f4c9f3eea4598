#include "process_compiler/recursion_watch.h"

#include <utility>

namespace Calder::ProcessCompiler {

constinit thread_local RecursionWatch::State recursion_state;

NestedTooDeeply::NestedTooDeeply()
    : std::runtime_error("the process nests too deeply for the stack") {}

RecursionWatch::RecursionWatch(std::uintptr_t lowest_frame, std::function<void()> look)
    : m_look(std::move(look)),
      m_outer(std::exchange(recursion_state, State{lowest_frame, steps_between_looks, this})) {}

RecursionWatch::~RecursionWatch() {
    recursion_state = m_outer;
}

void RecursionWatch::alarm(std::uintptr_t frame) {
    State& state = recursion_state;
    if (frame < state.lowest_frame) {
        throw NestedTooDeeply();
    }
    state.steps_left = steps_between_looks;
    if (state.watch != nullptr && state.watch->m_look) {
        state.watch->m_look();
    }
}

} // namespace Calder::ProcessCompiler
