#pragma once

#include <calder/csp/binary_process.h>
#include <calder/process_compiler/kinds.h>

namespace InTurns {

using Calder::BitSet;
using namespace Calder::ProcessCompiler;

/// Two processes in turns: after each visible event of one, the other one has its turn. Silent steps
/// are free. Whoever terminates when it has its turn terminates both.
///
///     P --e--> P'                    P --tau--> P'                     Q --tau--> Q'
///     ------------------------ (1)   ------------------------- (2)     ------------------------- (3)
///     P <> Q  --e-->  Q <> P'        P <> Q  --tau-->  P' <> Q         P <> Q  --tau-->  P <> Q'
///     e visible
///
///     P --tick--> P'
///     ------------------------ (4)
///     P <> Q  --tick-->  STOP
class InTurnsProcess : public CSP::BinaryProcess<InTurnsProcess> {
  public:
    static constexpr CSP::Shape shape = {
        .kind = first_foreign_kind,
        .hash_seed = 0x2b8a5,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = CSP::Arguments::none,
        .run_at_start = CSP::Arguments::every,
        .discarded = CSP::Arguments::none,
        .turned_on_by = CSP::never_asked,
        .level = CSP::Level::high,
        .commutative = false,
        .precedence = 9,
        .associativity = non_associative,
        .symbol = " <> ",
        .description = "In turns",
    };

    InTurnsProcess();
    InTurnsProcess(ProcessPointer const& first, ProcessPointer const& second);
    ~InTurnsProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace InTurns
