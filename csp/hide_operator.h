#pragma once

#include "csp/relabelling_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Hiding: P runs, and its events of A are performed silently.
///
///     P --e--> P'                       P --e--> P'
///     ---------------------------       -------------------------
///     P \ A  --tau-->  P' \ A           P \ A  --e-->  P' \ A
///     e in A                            e not in A
///
/// Tick is an event like any other, and hiding stays after it.
class CALDER_CSP_EXPORT HideOperator : public RelabellingOperator {
  public:
    explicit HideOperator(BitSet const& hidden_events);
    HideOperator(Session& session, EventSet const& hidden_events);
    ~HideOperator() override;

    std::uint64_t hash_code() const override;

    unsigned operator_kind() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;

  protected:
    unsigned event_outside(unsigned event) const override;
};

} // namespace Calder::ProcessCompiler::CSP
