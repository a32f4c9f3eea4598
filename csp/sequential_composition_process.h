#pragma once

#include "csp/binary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Sequential composition: P until it terminates, then, by a silent step, Q.
///
///     P --e--> P'                     P --tick--> P'
///     -------------------------       ---------------------
///     P ; Q  --e-->  P' ; Q           P ; Q  --tau-->  Q
///     e not tick
class CALDER_CSP_EXPORT SequentialCompositionProcess
    : public BinaryProcess<SequentialCompositionProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 15,
        .hash_seed = 0xf0d,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::second,
        .run_at_start = Arguments::first,
        .discarded = Arguments::none,
        .turned_on_by = TurnedOnBy::silent_step,
        .level = Level::as_wished,
        .commutative = false,
        .precedence = 3,
        .associativity = right_associative,
        .symbol = " ; ",
        .description = "Sequential Composition",
    };

    /// @{
    /// Without arguments, both are null until `set_arguments`.
    SequentialCompositionProcess();
    SequentialCompositionProcess(ProcessPointer const& first, ProcessPointer const& second);
    /// @}
    ~SequentialCompositionProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                      HighLevelVisitor const& visitor) const override;
    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
