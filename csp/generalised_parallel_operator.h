#pragma once

#include "csp/event_set_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Generalised parallel over a set A, of any number of arguments: the events of A are performed by
/// all together, every other event by one alone. Tick always belongs to A.
///
///     Pi --e--> Pi'
///     ------------------------------------------------------- e not in A
///     .. [|A|] Pi [|A|] ..  --e-->  .. [|A|] Pi' [|A|] ..
///
///     P1 --e--> P1'   ..   Pn --e--> Pn'
///     -------------------------------------------------------- e in A; for tick, to STOP
///     P1 [|A|] .. [|A|] Pn  --e-->  P1' [|A|] .. [|A|] Pn'
///
/// The independent transitions come first, argument by argument.
class CALDER_CSP_EXPORT GeneralisedParallelOperator
    : public EventSetOperator<GeneralisedParallelOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 2,
        .hash_seed = 0x551,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = true,
        .precedence = 8,
        .associativity = non_associative,
        .symbol = "[|",
        .symbol_end = "|]",
        .description = "Generalised Parallel synchronising:",
        .text_when_empty = "SKIP",
        .same_operator = SameOperator::with_equal_parameters,
    };

    /// Tick is added to the set.
    explicit GeneralisedParallelOperator(BitSet const& synchronised);
    ~GeneralisedParallelOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
