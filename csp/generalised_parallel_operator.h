#pragma once

#include "csp/event_set_operator.h"
#include "csp/static_operator.h"

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
class CALDER_CSP_EXPORT GeneralisedParallelOperator : public StaticOperator<EventSetOperator> {
  public:
    /// Tick is added to the set.
    explicit GeneralisedParallelOperator(BitSet const& synchronised);
    ~GeneralisedParallelOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    std::uint64_t hash_code() const override;

    unsigned operator_kind() const override;
    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Operator const& other) const override;
};

} // namespace Calder::ProcessCompiler::CSP
