#pragma once

#include "csp/relabelling_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Projection: P runs, and only its events of A stay visible. Tick always stays tick.
///
///     P --e--> P'                       P --e--> P'
///     --------------------------        ----------------------------
///     P |\ A  --e-->  P' |\ A           P |\ A  --tau-->  P' |\ A
///     e in A or tick                    otherwise
///
/// Tau stays tau whatever the set, and projection stays after a tick.
class CALDER_CSP_EXPORT ProjectOperator : public RelabellingOperator {
  public:
    explicit ProjectOperator(BitSet const& projected_events);
    ProjectOperator(Session& session, EventSet const& projected_events);
    ~ProjectOperator() override;

    std::uint64_t hash_code() const override;

    unsigned operator_kind() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;

  protected:
    unsigned event_outside(unsigned event) const override;
};

} // namespace Calder::ProcessCompiler::CSP
