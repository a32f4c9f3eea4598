#pragma once

#include "csp/nary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Internal choice of any number of arguments: becomes one of them by a silent step, whatever the
/// environment would like. The choice of nothing does nothing.
///
///     ------------------------------------
///     P1 |~| .. |~| Pn  --tau-->  Pi
class CALDER_CSP_EXPORT InternalChoiceProcess : public NaryProcess<InternalChoiceProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 11,
        .hash_seed = 0x709,
        .recursion_type = RecursionType::starts_none,
        .allow_recursion = Arguments::every,
        .run_at_start = Arguments::none,
        .discarded = never_asked,
        .turned_on_by = TurnedOnBy::silent_step,
        .level = Level::as_wished,
        .commutative = true,
        .precedence = 7,
        .associativity = left_associative,
        .symbol = " |~| ",
        .description = "Internal Choice",
        .text_when_empty = "STOP",
    };

    /// `count` arguments that are null until `set_arguments`.
    explicit InternalChoiceProcess(unsigned count);
    /// The arguments are never released (NaryProcess).
    explicit InternalChoiceProcess(ProcessArray const& arguments);
    ~InternalChoiceProcess() override;

    bool needs_memoisation() const override;
    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                      HighLevelVisitor const& visitor) const override;
    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
