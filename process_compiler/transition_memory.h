#pragma once

#include "process_compiler/export.h"
#include "process_compiler/process.h"

#include <optional>
#include <span>

namespace Calder::ProcessCompiler {

/// (event, successor).
using Step = std::pair<unsigned, ProcessPointer>;

/// What a host remembers of terms that are arguments of very many others: a component of a network
/// offers the same in each of the thousands of states in which it stands still. Constructs ask
/// their arguments by `visit_argument`, which finds it there.
class CALDER_PROCESS_COMPILER_EXPORT TransitionMemory {
  public:
    /// The transitions of the term, or of one that is equal to it, in the order in which it reports
    /// them; nothing where they are not remembered. They stay where they are as long as the memory.
    /// May ask the term for them.
    virtual std::optional<std::span<Step const>> find(ProcessPointer const& term,
                                                      NamedProcessSource const& source) = 0;

  protected:
    TransitionMemory() = default;
    ~TransitionMemory() = default;
    TransitionMemory(TransitionMemory const&) = delete;
    TransitionMemory& operator=(TransitionMemory const&) = delete;
};

/// Has `visit_argument` look in a memory, in the thread that made it, for as long as it lives; of
/// several the one made last counts.
class CALDER_PROCESS_COMPILER_EXPORT MemoryInUse {
  public:
    /// The memory must outlive it.
    inline explicit MemoryInUse(TransitionMemory& memory) noexcept;
    inline ~MemoryInUse();
    MemoryInUse(MemoryInUse const&) = delete;
    MemoryInUse& operator=(MemoryInUse const&) = delete;

  private:
    TransitionMemory* m_outer;
};

/// Of this thread; null where every term is asked again.
extern CALDER_PROCESS_COMPILER_EXPORT constinit thread_local TransitionMemory* transition_memory
    __attribute__((tls_model("initial-exec")));

inline MemoryInUse::MemoryInUse(TransitionMemory& memory) noexcept
    : m_outer(std::exchange(transition_memory, &memory)) {}

inline MemoryInUse::~MemoryInUse() {
    transition_memory = m_outer;
}

/// Reports remembered transitions as `term` would.
CALDER_PROCESS_COMPILER_EXPORT bool visit_remembered(std::span<Step const> steps,
                                                     Process const& term,
                                                     NamedProcessSource const& source,
                                                     TransitionVisitor const& visitor);

/// What a construct calls to ask an argument for its transitions, as Process::visit_transitions
/// says. What a memory has is reported from there, with successors that are equal to those that the
/// argument would make.
inline bool visit_argument(ProcessPointer const& argument, NamedProcessSource const& source,
                           TransitionVisitor const& visitor) {
    if (transition_memory != nullptr && argument->needs_memoisation()) {
        if (auto const steps = transition_memory->find(argument, source)) {
            return visit_remembered(*steps, *argument, source, visitor);
        }
    }
    return argument->visit_transitions(source, visitor);
}

} // namespace Calder::ProcessCompiler
