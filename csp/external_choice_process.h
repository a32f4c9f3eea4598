#pragma once

#include "csp/nary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// External choice of any number of arguments: all run, a silent step of one leaves the choice
/// open, any other event of one decides it. The choice of nothing is STOP.
///
///     Pi --tau--> Pi'                               Pi --e--> Pi'
///     -----------------------------------------     -----------------------------
///     .. [] Pi [] ..  --tau-->  .. [] Pi' [] ..     .. [] Pi [] ..  --e-->  Pi'
///                                                   e not tau
///
/// Tick decides the choice like a visible event.
class CALDER_CSP_EXPORT ExternalChoiceProcess : public NaryProcess {
  public:
    explicit ExternalChoiceProcess(unsigned count);
    explicit ExternalChoiceProcess(ProcessArray const& arguments);
    ExternalChoiceProcess(ProcessArray const& arguments, unsigned index,
                          ProcessPointer const& replacement);
    ~ExternalChoiceProcess() override;

    bool visit_transitions(NamedProcessSource const& source,
                           TransitionVisitor const& visitor) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    std::uint64_t hash_code() const override;
    ProcessPointer clone(bool deep) const override;

    unsigned kind() const override;
    RecursionType recursion_type() const override;
    bool allows_recursion(unsigned index) const override;
    ArgumentState process_state(unsigned index) const override;
    bool discarded_by(unsigned index) const override;
    TurnedOnBy turned_on_by(unsigned index) const override;
    CompilationLevel preferred_compilation_level(bool high_wished) const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_operator(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
};

} // namespace Calder::ProcessCompiler::CSP
