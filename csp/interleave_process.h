#pragma once

#include "csp/nary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Interleaving of any number of arguments: each runs on its own, and all terminate together. The
/// interleaving of nothing is SKIP.
///
///     Pi --e--> Pi'
///     --------------------------------------------- e not tick
///     .. ||| Pi ||| ..  --e-->  .. ||| Pi' ||| ..
///
///     P1 --tick--> P1'   ..   Pn --tick--> Pn'
///     ------------------------------------------
///     P1 ||| .. ||| Pn  --tick-->  STOP
///
/// The termination is reported once, after everything else.
class CALDER_CSP_EXPORT InterleaveProcess : public NaryProcess<InterleaveProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 13,
        .hash_seed = 0x8e1,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = true,
        .precedence = 9,
        .associativity = left_associative,
        .symbol = " ||| ",
        .description = "Interleave",
        .text_when_empty = "SKIP",
    };

    /// `count` arguments that are null until `set_arguments`.
    explicit InterleaveProcess(unsigned count);
    /// The arguments are never released (NaryProcess).
    explicit InterleaveProcess(ProcessArray const& arguments);
    /// The same arguments with the one at `index` replaced.
    InterleaveProcess(ProcessArray const& arguments, unsigned index,
                      ProcessPointer const& replacement);
    ~InterleaveProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
