#pragma once

#include "csp/shaped.h"

namespace Calder::ProcessCompiler::CSP {

/// Linked parallel of two arguments: a link (a, b) makes P perform a and Q perform b together, in
/// silence. Linked events happen in no other way. The link (tick, tick) is always there; its joint
/// step is tick.
///
///     P --a--> P'     Q --b--> Q'          P --tick--> P'     Q --b--> Q'
///     -------------------------------      -------------------------------
///     P [L] Q  --tau-->  P' [L] Q'         P [L] Q  --tick-->  STOP
///     a <-> b in L, a not tick             tick <-> b in L
///
///     P --e--> P'                          Q --e--> Q'
///     -----------------------------        -----------------------------
///     P [L] Q  --e-->  P' [L] Q            P [L] Q  --e-->  P [L] Q'
///     e on the left of no link             e on the right of no link
///
/// P's own steps come first, then Q's, then the links in their order.
class CALDER_CSP_EXPORT LinkedParallelOperator : public ShapedOperator<LinkedParallelOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 3,
        .hash_seed = 0xa75,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = false,
        .precedence = 8,
        .associativity = non_associative,
        .symbol = " [",
        .symbol_end = "] ",
        .description = "Link Parallel synchronising:",
    };

    /// Pairs (event of the first argument, event of the second).
    using Links = FixedArray<std::pair<unsigned, unsigned>>;

    /// Pairs (left event, right event); tick <-> tick is added as the last one.
    explicit LinkedParallelOperator(Links const& links);
    ~LinkedParallelOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    std::uint64_t hash_code() const override;
    bool operator==(Operator const& other) const override;
    bool operator!=(Operator const& other) const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;

  private:
    Links m_links;
    BitSet m_left_linked;
    BitSet m_right_linked;
};

} // namespace Calder::ProcessCompiler::CSP
