#pragma once

#include "csp/prefixed_process.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// Prefix: performs one event, then behaves as its continuation.
///
///     -----------------
///     a -> P  --a-->  P
///
/// A prefix built from a session has no continuation until `set_arguments`.
class CALDER_CSP_EXPORT PrefixProcess : public PrefixedProcess<PrefixProcess, unsigned> {
  public:
    static constexpr Shape shape = {
        .kind = 14,
        .hash_seed = 0xc41,
        .recursion_type = RecursionType::starts_none,
        .allow_recursion = Arguments::every,
        .run_at_start = Arguments::none,
        .discarded = never_asked,
        .turned_on_by = TurnedOnBy::visible_event,
        .level = Level::low,
        .commutative = false,
        .precedence = 2,
        .associativity = right_associative,
        .symbol = "->",
        .description = "Prefix ",
    };

    /// The event's number in the session; no_event where it is not declared.
    PrefixProcess(Session& session, EventPointer const& event);
    /// The event by its number. The continuation may be null until `set_arguments`.
    PrefixProcess(unsigned const& event, ProcessPointer const& destination);
    ~PrefixProcess() override;

    /// Its number.
    unsigned event() const { return m_offer; }

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
