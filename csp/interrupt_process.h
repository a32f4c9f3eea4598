#pragma once

#include "csp/binary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Interrupt: P runs, and at any moment Q may take over by an event that is not silent. P's
/// termination ends the whole.
///
///     P --e--> P'                          P --tick--> P'
///     ---------------------------          --------------------------
///     P /\ Q  --e-->  P' /\ Q              P /\ Q  --tick-->  STOP
///     e not tick
///
///     Q --tau--> Q'                        Q --e--> Q'
///     -----------------------------        ----------------------
///     P /\ Q  --tau-->  P /\ Q'            P /\ Q  --e-->  Q'
///                                          e not tau
class CALDER_CSP_EXPORT InterruptProcess : public BinaryProcess<InterruptProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 12,
        .hash_seed = 0x7ed,
        .recursion_type = RecursionType::ends_others,
        .allow_recursion = Arguments::second,
        .run_at_start = Arguments::every,
        .discarded = Arguments::all_but_first,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = false,
        .precedence = 5,
        .associativity = left_associative,
        .symbol = " /\\ ",
        .description = "Interrupt",
    };

    /// @{
    /// Without arguments, both are null until `set_arguments`.
    InterruptProcess();
    InterruptProcess(ProcessPointer const& first, ProcessPointer const& second);
    /// @}
    ~InterruptProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
