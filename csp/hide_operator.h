#pragma once

#include "csp/static_operator.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// Hiding: P runs, and its events of A are performed silently.
///
///     P --e--> P'                       P --e--> P'
///     ---------------------------       -------------------------
///     P \ A  --tau-->  P' \ A           P \ A  --e-->  P' \ A
///     e in A                            e not in A
///
/// Tick is an event like any other, and hiding stays after it.
class CALDER_CSP_EXPORT HideOperator : public StaticOperator {
  public:
    explicit HideOperator(BitSet const& hidden_events);
    HideOperator(Session& session, EventSet const& hidden_events);
    ~HideOperator() override;

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
    /// The event of the whole when the argument performs `event`.
    unsigned event_outside(unsigned event) const;

    BitSet hidden_events_;
};

} // namespace Calder::ProcessCompiler::CSP
