#pragma once

#include "csp/export.h"
#include "csp/static_operator.h"

#include <unordered_map>

namespace Calder::ProcessCompiler::CSP {

/// Renaming by a relation R: each event of P is performed as every event that R relates to it; an
/// event that R does not mention stays as it is.
///
///     P --e--> P'                     P --e--> P'                     P --tick--> P'
///     -------------------------       -------------------------       -------------------------
///     P[[R]]  --f-->  P'[[R]]         P[[R]]  --e-->  P'[[R]]         P[[R]]  --tick-->  STOP
///     e R f, e not tick               e not in R, not tick
///
/// Of transitions, tick is never renamed; of formats, it is an event like any other. Several
/// targets of one event come in the reverse of the order in which they were given.
class CALDER_CSP_EXPORT RenameOperator : public StaticOperator<Operator> {
  public:
    /// Pairs (event of the argument, event of the whole). Duplicates are kept.
    explicit RenameOperator(FixedArray<std::pair<unsigned, unsigned>> const& pairs);
    ~RenameOperator() override;

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
    std::unordered_multimap<unsigned, unsigned> event_map_;
};

} // namespace Calder::ProcessCompiler::CSP
