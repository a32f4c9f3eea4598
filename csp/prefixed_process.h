#pragma once

#include "csp/export.h"
#include "process_compiler/process.h"

namespace Calder::ProcessCompiler::CSP {

/// What the two prefixes share: the continuation, which is off until an event of the prefix happens
/// and then is all that is left.
class CALDER_CSP_EXPORT PrefixedProcess : public CompilableProcess {
  public:
    ~PrefixedProcess() override;

    ProcessPointer const& destination() const { return destination_; }
    unsigned argument_count() const override;
    /// The continuation, whatever the index.
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    bool needs_memoisation() const override;

    RecursionType recursion_type() const override;
    bool allows_recursion(unsigned index) const override;
    ArgumentState process_state(unsigned index) const override;
    /// Aborts: the only argument has no others that could throw it away.
    bool discarded_by(unsigned index) const override;
    TurnedOnBy turned_on_by(unsigned index) const override;
    CompilationLevel preferred_compilation_level(bool high_wished) const override;

    void pretty_print_operator(Printer& printer) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Process const& other) const override;

  protected:
    explicit PrefixedProcess(ProcessPointer const& destination);

    /// Two formats: one without rules yet, and the continuation alone.
    std::unique_ptr<Formats>
    formats_before_continuation(std::vector<BitSet> const& alphabets) const;

    ProcessPointer destination_;
};

} // namespace Calder::ProcessCompiler::CSP
