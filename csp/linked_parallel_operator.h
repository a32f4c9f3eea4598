#pragma once

#include "csp/export.h"
#include "csp/static_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Linked parallel of two arguments: a link (a, b) makes P perform a and Q perform b together, in
/// silence. Linked events happen in no other way. The link (tick, tick) is always there; its joint
/// step is tick.
///
///     P --a--> P'     Q --b--> Q'          P --tick--> P'     Q --tick--> Q'
///     -------------------------------      ----------------------------------
///     P [L] Q  --tau-->  P' [L] Q'         P [L] Q  --tick-->  STOP
///     a <-> b in L, not tick
///
///     P --e--> P'                          Q --e--> Q'
///     -----------------------------        -----------------------------
///     P [L] Q  --e-->  P' [L] Q            P [L] Q  --e-->  P [L] Q'
///     e on the left of no link             e on the right of no link
///
/// P's own steps come first, then Q's, then the links in their order.
class CALDER_CSP_EXPORT LinkedParallelOperator : public StaticOperator<Operator> {
  public:
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

    unsigned operator_kind() const override;
    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Operator const& other) const override;

  private:
    Links links_;
    BitSet left_linked_;
    BitSet right_linked_;
};

} // namespace Calder::ProcessCompiler::CSP
