#pragma once

#include "csp/nary_process.h"

namespace Calder::ProcessCompiler::CSP {

/// Interleaving of any number of arguments: each runs on its own, and all terminate together. The
/// interleaving of nothing is SKIP.
///
///     Pi --e--> Pi'
///     --------------------------------------------- e not tick
///     .. ||| Pi ||| ..  --e-->  .. ||| Pi' ||| ..
///
///     P1 --tick--> P1'   ..   Pn --tick--> Pn'
///     ------------------------------------------
///     P1 ||| .. ||| Pn  --tick-->  STOP
///
/// The termination is reported once, after everything else.
class CALDER_CSP_EXPORT InterleaveProcess : public NaryProcess {
  public:
    explicit InterleaveProcess(unsigned count);
    explicit InterleaveProcess(ProcessArray const& arguments);
    InterleaveProcess(ProcessArray const& arguments, unsigned index,
                      ProcessPointer const& replacement);
    ~InterleaveProcess() override;

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
