#pragma once

#include "csp/binary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Interrupt: P runs, and at any moment Q may take over by an event that is not silent. P's
/// termination ends the whole.
///
///     P --e--> P'                          P --tick--> P'
///     ---------------------------          --------------------------
///     P /\ Q  --e-->  P' /\ Q              P /\ Q  --tick-->  STOP
///     e not tick
///
///     Q --tau--> Q'                        Q --e--> Q'
///     -----------------------------        ----------------------
///     P /\ Q  --tau-->  P /\ Q'            P /\ Q  --e-->  Q'
///                                          e not tau
class CALDER_CSP_EXPORT InterruptProcess : public BinaryProcess {
  public:
    InterruptProcess();
    InterruptProcess(ProcessPointer const& first, ProcessPointer const& second);
    ~InterruptProcess() override;

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
