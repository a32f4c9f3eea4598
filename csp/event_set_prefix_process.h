#pragma once

#include "csp/prefixed_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Prefix choice over a set: performs any one event of A, then behaves as its continuation.
///
///     ------------------- e in A
///     {A} -> P  --e-->  P
class CALDER_CSP_EXPORT EventSetPrefixProcess
    : public PrefixedProcess<EventSetPrefixProcess, BitSet> {
  public:
    static constexpr Shape shape = {
        .kind = 19,
        .hash_seed = 0xc41, // as of the prefix of one event: the kinds tell the two apart
        .recursion_type = RecursionType::starts_none,
        .allow_recursion = Arguments::every,
        .run_at_start = Arguments::none,
        .discarded = never_asked,
        .turned_on_by = TurnedOnBy::visible_event,
        .level = Level::low,
        .commutative = never_asked, // unlike the prefix of one event
        .precedence = 2,
        .associativity = right_associative,
        .symbol = "->",
        .description = "Prefix event set:",
    };

    /// The continuation may be null until `set_arguments`.
    EventSetPrefixProcess(BitSet const& events, ProcessPointer const& destination);
    ~EventSetPrefixProcess() override;

    /// What it offers; the numbers are the session's that made them.
    BitSet const& events() const { return m_offer; }

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                      HighLevelVisitor const& visitor) const override;
    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;
};

} // namespace Calder::ProcessCompiler::CSP
