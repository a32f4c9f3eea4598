#pragma once

#include "csp/event_set_process.h"

namespace Calder::ProcessCompiler::CSP {

/// CHAOS(A): may at any time refuse everything, or offer any event of A and go on.
///
///     -------------------------     --------------------------------------------------
///     CHAOS(A)  --tau-->  STOP      CHAOS(A)  --tau-->  [] e in A: (e -> CHAOS(A))
class CALDER_CSP_EXPORT ChaosProcess : public EventSetProcess {
  public:
    ChaosProcess(Session& session, EventSet const& events);
    explicit ChaosProcess(BitSet const& events);
    ~ChaosProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::uint64_t hash_code() const override;
    ProcessPointer clone(bool deep) const override;

    unsigned kind() const override;
    /// Panics with "Unary operator cannot be commutative".
    bool is_commutative() const override;

    void pretty_print_operator(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;
};

} // namespace Calder::ProcessCompiler::CSP
