#pragma once

#include "csp/event_set_operator.h"
#include "csp/static_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// What hiding and projection share: one argument that runs unchanged while each of its events is
/// performed as another one, by the set.
///
///             P --e--> P'
///     --------------------------- f = event_outside(e)
///     P op A  --f-->  P' op A
class CALDER_CSP_EXPORT RelabellingOperator : public StaticOperator<EventSetOperator> {
  public:
    ~RelabellingOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    bool is_commutative() const override;

    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Operator const& other) const override;

  protected:
    using StaticOperator::StaticOperator;

    /// The event of the whole when the argument performs `event`.
    virtual unsigned event_outside(unsigned event) const = 0;
};

} // namespace Calder::ProcessCompiler::CSP
