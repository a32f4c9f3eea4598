#pragma once

#include "csp/binary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Sliding choice (timeout): offers P, but may at any time slide to Q by a silent step.
///
///                                P --tau--> P'                     P --e--> P'
///     ----------------------     -----------------------------     ----------------------
///     P [> Q  --tau-->  Q        P [> Q  --tau-->  P' [> Q         P [> Q  --e-->  P'
///                                                                  e not tau
///
/// The timeout is reported first.
class CALDER_CSP_EXPORT SlidingChoiceProcess : public BinaryProcess {
  public:
    SlidingChoiceProcess();
    SlidingChoiceProcess(ProcessPointer const& first, ProcessPointer const& second);
    ~SlidingChoiceProcess() override;

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

    void pretty_print_operator(Printer& printer) const override;
    void pretty_print_operator_description(Printer& printer) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
};

} // namespace Calder::ProcessCompiler::CSP
