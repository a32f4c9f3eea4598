#pragma once

#include "process_compiler/process.h"

#include <string>

namespace Calder::ProcessCompiler {

/// A reference to a named process: the term by which recursion is written.
///
///     the process of that name --e--> P'
///     ----------------------------------
///              NAME --e--> P'
///
/// It holds a number and the source that gave it, never the process, so recursion makes no cycle of
/// pointers. Two are equal when both agree. It may outlive its source as long as it is asked for
/// neither its name, which printing needs, nor its transitions.
///
/// It has no arguments and no formats of its own: whoever compiles it first asks the source what it
/// stands for. The questions about arguments abort, as for RUN and CHAOS.
class CALDER_PROCESS_COMPILER_EXPORT NamedProcess : public Process {
  public:
    ~NamedProcess() override;

    /// As the source says it.
    std::string name() const;
    /// Its place among the references of the source that made it.
    unsigned number() const { return m_number; }
    unsigned argument_count() const override;
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    /// False: its definition may be remembered.
    bool needs_memoisation() const override;

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
    friend class NamedProcessSource;

    NamedProcess(NamedProcessSource const& source, unsigned number);

    bool is_same(Process const& other) const;

    NamedProcessSource const* m_source;
    unsigned m_number;
};

/// As its source hands it out.
using NamedProcessPointer = boost::intrusive_ptr<NamedProcess>;

} // namespace Calder::ProcessCompiler
