#pragma once

#include "csp/event_set_process.h"

namespace Calder::ProcessCompiler::CSP {

/// RUN(A): performs any event of A for ever.
///
///     ------------------------- e in A
///     RUN(A)  --e-->  RUN(A)
class CALDER_CSP_EXPORT RunProcess : public EventSetProcess {
  public:
    RunProcess(Session& session, EventSet const& events);
    explicit RunProcess(BitSet const& events);
    ~RunProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::uint64_t hash_code() const override;
    ProcessPointer clone(bool deep) const override;

    unsigned kind() const override;
    bool is_commutative() const override;

    void pretty_print_operator(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;
};

} // namespace Calder::ProcessCompiler::CSP
