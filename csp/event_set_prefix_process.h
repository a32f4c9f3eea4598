#pragma once

#include "core/bit_set.h"
#include "csp/prefixed_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Prefix choice over a set: performs any one event of A, then behaves as its continuation.
///
///     ------------------- e in A
///     {A} -> P  --e-->  P
class CALDER_CSP_EXPORT EventSetPrefixProcess : public PrefixedProcess {
  public:
    EventSetPrefixProcess(BitSet const& events, ProcessPointer const& destination);
    ~EventSetPrefixProcess() override;

    BitSet const& events() const { return events_; }

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
    /// Aborts, unlike the prefix of one event.
    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;

  private:
    BitSet events_;
};

} // namespace Calder::ProcessCompiler::CSP
