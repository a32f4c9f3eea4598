#pragma once

#include "csp/shaped.h"

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
class CALDER_CSP_EXPORT RenameOperator : public ShapedOperator<RenameOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 5,
        .hash_seed = 0xe27,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = false,
        .precedence = 1,
        .associativity = left_associative,
        .symbol = "[[",
        .symbol_end = "]]",
        .description = "Rename with event map:",
    };

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

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;

  private:
    std::unordered_multimap<unsigned, unsigned> m_event_map;
};

} // namespace Calder::ProcessCompiler::CSP
