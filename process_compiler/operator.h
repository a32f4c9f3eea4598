#pragma once

#include "process_compiler/process.h"

namespace Calder::ProcessCompiler {

class OperatorProcess;

/// The other half of the contract: a construct that has only parameters (an event set, a renaming,
/// links, alphabets). The host applies it to arguments by an OperatorProcess and passes these to
/// every call that needs them; one operator object serves all terms that come of a term.
///
/// Operators are immutable and shared between threads; like terms they live on the heap. As in
/// Process, the virtual functions stand in the order of their slots, and those that share a name
/// with one there mean the same. There are as many arguments and alphabets as the operator is made
/// for: one for hiding, projection and renaming; two for linked parallel, exception and
/// synchronising interrupt; for alphabetised parallel as many as it has alphabets; for the others
/// any number.
class CALDER_PROCESS_COMPILER_EXPORT Operator : public AtomicReferenceCounted,
                                                public PrettyPrintable {
  public:
    ~Operator() override;

    Operator(Operator const&) = delete;
    Operator& operator=(Operator const&) = delete;

    /// @{
    /// Structural equality, kinds first, of the parameters.
    virtual bool operator==(Operator const& other) const = 0;
    virtual bool operator!=(Operator const& other) const = 0;
    /// @}
    /// What Process::hash_code says, of the parameters.
    virtual std::uint64_t hash_code() const = 0;
    /// Which class this is; the numbers are apart from those of Process::kind. The library's
    /// operators have 0 to 8.
    virtual unsigned operator_kind() const = 0;

    /// The transitions of the operator applied to `arguments`, none of which is null. Successors
    /// are applications of this same operator, or arguments, or successors of arguments, or STOP.
    virtual bool visit_transitions(NamedProcessSource const& source,
                                   TransitionVisitor const& visitor,
                                   ProcessArray const& arguments) const = 0;
    /// The default reports nothing.
    virtual void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                              HighLevelVisitor const& visitor,
                                              ProcessArray const& arguments) const;
    /// What Process::high_level_formats says; every operator has them.
    virtual std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const = 0;

    /// @{
    /// What Process says of the function of this name.
    virtual RecursionType recursion_type() const = 0;
    virtual bool allows_recursion(unsigned index) const = 0;
    virtual ArgumentState process_state(unsigned index) const = 0;
    virtual bool discarded_by(unsigned index) const = 0;
    virtual TurnedOnBy turned_on_by(unsigned index) const = 0;
    virtual CompilationLevel preferred_compilation_level(bool high_wished) const = 0;
    virtual bool is_commutative() const = 0;
    /// @}

    /// The operator on its own; where it stands between two operands, with the blanks around it.
    void pretty_print(Printer& printer) const override = 0;
    /// The operator and its parameters in words.
    virtual void pretty_print_description(Printer& printer) const = 0;
    /// The whole application: this operator with the arguments of `process`.
    virtual void pretty_print_operator_process(Printer& printer,
                                               OperatorProcess const& process) const = 0;
    /// @{
    /// What Process says of the function of this name.
    virtual std::pair<unsigned, unsigned> pretty_print_information() const = 0;
    virtual bool pretty_print_is_same_operator(Operator const& other) const = 0;
    /// @}

  protected:
    Operator();

    /// This very operator, for the applications that are its successors.
    boost::intrusive_ptr<Operator> self() const;

    /// Filled when the code is first asked for.
    CachedHash m_hash;
};

/// All terms that come of a term hold the same operator.
using OperatorPointer = boost::intrusive_ptr<Operator>;

} // namespace Calder::ProcessCompiler
