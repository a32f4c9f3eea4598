#pragma once

#include "csp/event_set_operator.h"

namespace Calder::ProcessCompiler::CSP {

/// Synchronising external choice over a set A, of any number of arguments: the events of A are
/// performed by all together and leave the choice open; another visible event decides it, a silent
/// step leaves it open, and a termination ends the whole.
///
///     P1 --e--> P1'   ..   Pn --e--> Pn'
///     -------------------------------------------------------- e in A; for tick, to STOP
///     P1 [+A+] .. [+A+] Pn  --e-->  P1' [+A+] .. [+A+] Pn'
///
///     Pi --tau--> Pi'
///     ----------------------------------------------------------- tau not in A
///     .. [+A+] Pi [+A+] ..  --tau-->  .. [+A+] Pi' [+A+] ..
///
///     Pi --e--> Pi'                             Pi --tick--> Pi'
///     ------------------------------------      ----------------------------------------
///     .. [+A+] Pi [+A+] ..  --e-->  Pi'         .. [+A+] Pi [+A+] ..  --tick-->  STOP
///     e not in A, not tau, not tick             tick not in A
///
/// Of formats, tick is an event like any other.
class CALDER_CSP_EXPORT SynchronisingExternalChoiceOperator
    : public EventSetOperator<SynchronisingExternalChoiceOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 6,
        .hash_seed = 0x132d,
        .recursion_type = RecursionType::ends_others,
        .allow_recursion = Arguments::every,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::as_wished,
        .commutative = false,
        .precedence = 6,
        .associativity = left_associative,
        .symbol = "[+",
        .symbol_end = "+]",
        .description = "Synchronising External Choice synchronising on:",
        .text_when_empty = "STOP",
        .same_operator = SameOperator::with_equal_parameters,
    };

    /// By event number; tick may be among them.
    explicit SynchronisingExternalChoiceOperator(BitSet const& synchronised_events);
    ~SynchronisingExternalChoiceOperator() override;

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;
};

} // namespace Calder::ProcessCompiler::CSP
