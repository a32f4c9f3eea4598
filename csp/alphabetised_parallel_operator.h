#pragma once

#include "csp/shaped.h"

namespace Calder::ProcessCompiler::CSP {

/// Alphabetised parallel of any number of arguments: argument i has an alphabet Ai; an event is
/// performed together by all whose alphabet has it, and an argument never performs an event outside
/// its own. Tick belongs to every alphabet.
///
///     Pi --e--> Pi' for all i with e in Ai, and Pi' = Pi for the others
///     ------------------------------------------------------------------- e in some Ai, not tau;
///     || (A1, P1) .. (An, Pn)  --e-->  || (A1, P1') .. (An, Pn')          for tick, to STOP
///
///     Pi --tau--> Pi'
///     -----------------------------------------------------
///     || .. (Ai, Pi) ..  --tau-->  || .. (Ai, Pi') ..
///
/// The silent steps come first, argument by argument, then the events ascending.
class CALDER_CSP_EXPORT AlphabetisedParallelOperator
    : public ShapedOperator<AlphabetisedParallelOperator> {
  public:
    static constexpr Shape shape = {
        .kind = 0,
        .hash_seed = 0x36d,
        .recursion_type = RecursionType::keeps_running,
        .allow_recursion = Arguments::none,
        .run_at_start = Arguments::every,
        .discarded = Arguments::none,
        .turned_on_by = never_asked,
        .level = Level::high,
        .commutative = true,
        .precedence = 8,
        .associativity = non_associative,
        .symbol = " […||…] ", // never with its alphabets
        .description = "Alphabetised Parallel with process alphabets:",
        .text_when_empty = "SKIP",
    };

    /// One alphabet an argument; tick is added to each.
    explicit AlphabetisedParallelOperator(std::vector<BitSet> const& alphabets);
    ~AlphabetisedParallelOperator() override;

    /// By argument, each with tick.
    FixedArray<BitSet> const& alphabets() const { return m_alphabets; }

    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    std::uint64_t hash_code() const override;
    bool operator==(Operator const& other) const override;
    bool operator!=(Operator const& other) const override;

    void pretty_print(Printer& printer) const override;
    void pretty_print_description(Printer& printer) const override;
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override;

  private:
    OwningArray<BitSet> m_alphabets;
};

} // namespace Calder::ProcessCompiler::CSP
