#pragma once

#include "csp/binary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Sliding choice (timeout): offers P, but may at any time slide to Q by a silent step.
///
///                                P --tau--> P'                     P --e--> P'
///     ----------------------     -----------------------------     ----------------------
///     P [> Q  --tau-->  Q        P [> Q  --tau-->  P' [> Q         P [> Q  --e-->  P'
///                                                                  e not tau
///
/// The timeout is reported first.
class CALDER_CSP_EXPORT SlidingChoiceProcess : public BinaryProcess<SlidingChoiceProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 16,
        .hash_seed = 0x101f,
        .recursion_type = RecursionType::ends_others,
        .allow_recursion = Arguments::every,
        .run_at_start = Arguments::first,
        .discarded = Arguments::every,
        .turned_on_by = TurnedOnBy::silent_step,
        .level = Level::as_wished,
        .commutative = false,
        .precedence = 4,
        .associativity = left_associative,
        .symbol = " [> ",
        .description = "Sliding Choice",
    };

    /// @{
    /// Without arguments, both are null until `set_arguments`.
    SlidingChoiceProcess();
    SlidingChoiceProcess(ProcessPointer const& first, ProcessPointer const& second);
    /// @}
    ~SlidingChoiceProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
