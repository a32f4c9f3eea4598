#pragma once

#include "process_compiler/names_at_start.h"
#include "process_compiler/process_maker.h"
#include "process_compiler/unguarded_recursion.h"

#include <cstddef>
#include <vector>

namespace Calder::ProcessCompiler {

/// So many processes may have to be made because one runs the next one from its start, besides the
/// one asked for. `P(n) = a -> STOP [] P(n + 1)` runs processes without end.
constexpr unsigned unguarded_chain_limit = 1000;

/// A maker in front of another one, which it asks for the terms. With each process that is made,
/// those that it runs from its start are made, and those that they run; so recursion without a
/// guard is found before anybody asks for transitions, which would not end.
///
///     InstanceMaker instances(…);              // makes each term alone
///     GuardedMaker guarded(source, instances);
///     source.set_maker(&guarded);
///     find_unguarded_recursion(source);        // among what was defined before
///
/// Throws UnguardedRecursion out of `NamedProcessSource::process` when a cycle closes or the chain
/// grows too long, and passes on what the other maker throws. Then whatever was not found guarded
/// has no term: asking again says the same again.
///
/// Every term is visited once, along the arguments that run from the start, however it is asked for
/// later; a byte is kept for each reference. Names that were defined count as guarded by those that
/// they run, once they were visited: to define them anew after that is not noticed.
class CALDER_PROCESS_COMPILER_EXPORT GuardedMaker final : public ProcessMaker {
  public:
    /// Both must outlive it, or rather its use.
    GuardedMaker(NamedProcessSource& source, ProcessMaker& maker);
    ~GuardedMaker() override;

    ProcessPointer make(unsigned number) override;
    std::string name(unsigned number) const override;

  private:
    enum class State : unsigned char { unknown, on_path, guarded };

    /// A process that is visited, because the one before it runs it.
    struct Visit {
        unsigned number;
        bool was_made; // just now; otherwise it was defined
        ProcessPointer term;
        std::size_t waiting_before; // how many processes waited before those that this one runs
    };

    class Path;

    void enter(unsigned number);
    void leave();
    void refuse_cycle(unsigned first) const;
    void refuse_long_chain() const;

    NamedProcessSource& m_source;
    ProcessMaker& m_maker;
    std::vector<State> m_states; // by number
    std::vector<Visit> m_path;   // from the process asked for
    std::vector<unsigned> m_waiting;
    unsigned m_made_on_path = 0;
    bool m_is_making = false;
    NamesAtStart m_names;
};

} // namespace Calder::ProcessCompiler
