#pragma once

#include "csp/export.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// Prefix: performs one event, then behaves as its continuation.
///
///     -----------------
///     a -> P  --a-->  P
///
/// The continuation is off until the event happens. A prefix built from a session has none until
/// `set_arguments`.
class CALDER_CSP_EXPORT PrefixProcess : public CompilableProcess {
  public:
    PrefixProcess(Session& session, EventPointer const& event);
    PrefixProcess(unsigned const& event, ProcessPointer const& destination);
    ~PrefixProcess() override;

    unsigned event() const { return event_; }
    ProcessPointer const& destination() const { return destination_; }
    unsigned argument_count() const override;
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    bool needs_memoisation() const override;
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
    RecursionType recursion_type() const override;
    bool allows_recursion(unsigned index) const override;
    ArgumentState process_state(unsigned index) const override;
    bool discarded_by(unsigned index) const override;
    TurnedOnBy turned_on_by(unsigned index) const override;
    CompilationLevel preferred_compilation_level(bool high_wished) const override;
    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_operator(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Process const& other) const override;

  private:
    unsigned event_;
    ProcessPointer destination_;
};

} // namespace Calder::ProcessCompiler::CSP
