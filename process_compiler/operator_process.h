#pragma once

#include "process_compiler/operator.h"

namespace Calder::ProcessCompiler {

/// The term that applies an operator to arguments. Every question that only the operator can answer
/// is passed on to it; the term itself knows its arguments and releases them when it goes.
///
/// It is the same operator as another term exactly when that applies an operator of which its own
/// one says so.
class CALDER_PROCESS_COMPILER_EXPORT OperatorProcess : public CompilableProcess {
  public:
    /// @{
    /// The operator must be made for that many arguments, which is not checked.
    OperatorProcess(OperatorPointer applied, ProcessPointer const& only);
    OperatorProcess(OperatorPointer applied, ProcessPointer const& first,
                    ProcessPointer const& second);
    OperatorProcess(OperatorPointer applied, ProcessArray const& arguments);
    /// @}
    /// The same arguments with the one at `index` replaced.
    OperatorProcess(OperatorPointer applied, ProcessArray const& arguments, unsigned index,
                    ProcessPointer const& replacement);
    ~OperatorProcess() override;

    /// As long as the term lives.
    Operator const& applied_operator() const { return *m_operator; }
    unsigned argument_count() const override;
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

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
    OperatorPointer m_operator;
    ReferencesInPlace<ProcessPointer, 2> m_arguments; // few operators have more
};

} // namespace Calder::ProcessCompiler
