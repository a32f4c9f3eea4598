#pragma once

#include "csp/nary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// External choice of any number of arguments: all run, a silent step of one leaves the choice
/// open, any other event of one decides it. The choice of nothing is STOP.
///
///     Pi --tau--> Pi'                               Pi --e--> Pi'
///     -----------------------------------------     -----------------------------
///     .. [] Pi [] ..  --tau-->  .. [] Pi' [] ..     .. [] Pi [] ..  --e-->  Pi'
///                                                   e not tau
///
/// Tick decides the choice like a visible event.
class CALDER_CSP_EXPORT ExternalChoiceProcess : public NaryProcess<ExternalChoiceProcess> {
  public:
    static constexpr Shape shape = {
        .kind = 10,
        .hash_seed = 0x493,
        .recursion_type = RecursionType::ends_others,
        .allow_recursion = Arguments::every,
        .run_at_start = Arguments::every,
        .discarded = Arguments::every,
        .turned_on_by = never_asked,
        .level = Level::as_wished,
        .commutative = true,
        .precedence = 6,
        .associativity = left_associative,
        .symbol = " [] ",
        .description = "External Choice",
        .text_when_empty = "STOP",
    };

    /// `count` arguments that are null until `set_arguments`.
    explicit ExternalChoiceProcess(unsigned count);
    /// The arguments are never released (NaryProcess).
    explicit ExternalChoiceProcess(ProcessArray const& arguments);
    /// The same arguments with the one at `index` replaced.
    ExternalChoiceProcess(ProcessArray const& arguments, unsigned index,
                          ProcessPointer const& replacement);
    ~ExternalChoiceProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    /// Asks the arguments whether they are equal, unlike its siblings.
    bool operator==(Process const& other) const override;
};

} // namespace Calder::ProcessCompiler::CSP
