#pragma once

#include "csp/export.h"
#include "process_compiler/process.h"

namespace Calder::ProcessCompiler::CSP {

/// External choice of any number of arguments: all run, a silent step of one leaves the choice
/// open, any other event of one decides it. The choice of nothing is STOP.
///
///                Pi --tau--> Pi'                            Pi --e--> Pi'
///     ------------------------------------------     --------------------------- e is not tau
///     .. [] Pi [] ..  --tau-->  .. [] Pi' [] ..      .. [] Pi [] ..  --e-->  Pi'
///
/// Tick decides the choice like a visible event. The arguments stand in a FixedArray and so are
/// never released.
class CALDER_CSP_EXPORT ExternalChoiceProcess : public CompilableProcess {
  public:
    /// `count` arguments that are null until `set_arguments`.
    explicit ExternalChoiceProcess(unsigned count);
    explicit ExternalChoiceProcess(ProcessArray const& arguments);
    /// The same arguments with the one at `index` replaced.
    ExternalChoiceProcess(ProcessArray const& arguments, unsigned index,
                          ProcessPointer const& replacement);
    ~ExternalChoiceProcess() override;

    unsigned argument_count() const override;
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

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
    ProcessArray arguments_;
};

} // namespace Calder::ProcessCompiler::CSP
