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
class CALDER_CSP_EXPORT PrefixProcess : public PrefixedProcess {
  public:
    PrefixProcess(Session& session, EventPointer const& event);
    PrefixProcess(unsigned const& event, ProcessPointer const& destination);
    ~PrefixProcess() override;

    unsigned event() const { return event_; }

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                      HighLevelVisitor const& visitor) const override;
    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    std::uint64_t hash_code() const override;
    bool operator==(Process const& other) const override;
    bool operator!=(Process const& other) const override;
    ProcessPointer clone(bool deep) const override;

    unsigned kind() const override;
    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;

  private:
    unsigned event_;
};

} // namespace Calder::ProcessCompiler::CSP
