#pragma once

#include "csp/static_operator.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// Projection: P runs, and only its events of A stay visible. Tick always stays tick.
///
///     P --e--> P'                       P --e--> P'
///     --------------------------        ----------------------------
///     P |\ A  --e-->  P' |\ A           P |\ A  --tau-->  P' |\ A
///     e in A or tick                    otherwise
///
/// Tau stays tau whatever the set, and projection stays after a tick.
class CALDER_CSP_EXPORT ProjectOperator : public StaticOperator {
  public:
    explicit ProjectOperator(BitSet const& projected_events);
    ProjectOperator(Session& session, EventSet const& projected_events);
    ~ProjectOperator() override;

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

    BitSet projected_events_;
};

} // namespace Calder::ProcessCompiler::CSP
