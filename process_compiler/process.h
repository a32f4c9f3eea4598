#pragma once

#include "core/bit_set.h"
#include "core/cached_hash.h"
#include "core/fixed_array.h"
#include "core/pretty_printer.h"
#include "core/reference_counted.h"
#include "process_compiler/argument_model.h"
#include "process_compiler/event_numbers.h"
#include "process_compiler/export.h"
#include "process_compiler/high_level_machine.h"

#include <boost/intrusive_ptr.hpp>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Calder::ProcessCompiler {

class NamedProcessSource;
class Process;
class Session;

/// @{
/// What terms print into, and themselves are. The session gives events their names; null where a
/// printer has none.
using Printer = Calder::PrettyPrinter::PrettyPrinter<Session const*, char>;
using PrettyPrintable = Calder::PrettyPrinter::PrettyPrintable<Session const*, char>;
/// @}

/// How terms are held.
using ProcessPointer = boost::intrusive_ptr<Process>;
/// Never releases what it holds (FixedArray): for passing arguments on.
using ProcessArray = FixedArray<ProcessPointer>;

/// Takes (event, successor) and says whether to go on. The successor is the caller's only for the
/// call: who wants it longer copies the pointer.
using TransitionVisitor = std::function<bool(unsigned, ProcessPointer const&)>;

/// Takes (the events of the running arguments that take part, in argument order; the event of the
/// term; the successor; whether the successor replaces the construct). With false the construct
/// stays and only its running argument has moved.
using HighLevelVisitor =
    std::function<void(std::vector<unsigned> const&, unsigned, ProcessPointer const&, bool)>;

/// Format 0 is the initial one. References to formats stay good while more are appended.
using Formats = std::deque<HighLevelMachine::UnCompiledFormat>;

/// A term: what a process construct is to its host.
///
/// This is one half of the contract; Operator is the other. Whoever writes a construct that holds
/// its own arguments derives from CompilableProcess and answers all of what follows; whoever writes
/// one that only has parameters derives from Operator.
///
/// Terms are shared: they are held by counted pointers, and nothing but `set_arguments` changes one
/// after it was built. So every operation is const, may be called from several threads at once, and
/// hands arguments on by reference. A term hands out counted pointers to itself, so it lives on the
/// heap and is held by one while it is asked anything. "Aborts" below marks a question that the
/// host never asks of some classes; those end the program with abort().
///
/// The virtual functions stand in the order of their slots; the two slots of the destructor come
/// first. The order is part of the binary interface.
class CALDER_PROCESS_COMPILER_EXPORT Process : public AtomicReferenceCounted,
                                               public PrettyPrintable {
  public:
    ~Process() override;

    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    /// A new term of the same class with the same parameters. Deep, each argument is the
    /// argument's own deep clone; otherwise all arguments are null and `set_arguments` must follow.
    virtual ProcessPointer clone(bool deep) const = 0;

    /// Asked by a host that explores terms: whether it pays to remember this term's transitions
    /// rather than to ask again. True unless a class knows that asking costs nothing.
    virtual bool needs_memoisation() const;

    /// Calls `visitor` once for each transition of the term, in the construct's fixed order. When
    /// the visitor answers false, returns false at once; but two constructs go on: what is answered
    /// to a joint tick is ignored, and a synchronising interrupt still offers its joint
    /// transitions. So who wants to stop keeps answering false. Returns true when all were visited.
    /// `source` resolves named processes and is passed on to the arguments. All arguments must be
    /// set.
    virtual bool visit_transitions(NamedProcessSource const& source,
                                   TransitionVisitor const& visitor) const = 0;

    /// The transitions of the construct alone, over the alphabets of its arguments, one for each
    /// (`alphabets[i]` holds what argument i can perform, tau and tick included). The default
    /// reports nothing: the formats then say everything.
    virtual void visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                              HighLevelVisitor const& visitor) const;

    /// The construct as a machine over its arguments, which have the given alphabets: exactly one
    /// for each argument. The caller owns the result; format 0 is the initial one. RUN, CHAOS and
    /// the reference to a named process abort.
    virtual std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const = 0;

    /// Structural equality, kinds first. Terms of different kinds may be compared freely; of equal
    /// kinds, all arguments must be set.
    virtual bool operator==(Process const& other) const = 0;
    /// The same tests with the opposite answers.
    virtual bool operator!=(Process const& other) const = 0;

    /// Equal terms have equal codes, with two exceptions: renamings by the same pairs in another
    /// order, and a term that was asked before `set_arguments`, since the code is kept in the term.
    /// A null argument counts as 0. Always even: mix it again before use in a table.
    virtual std::uint64_t hash_code() const = 0;

    /// Which class this is. The library's constructs have 10 to 19 (csp/constructs.h), the host's
    /// own terms 20 and 21, other libraries' 100 and more (kinds.h).
    virtual unsigned kind() const = 0;

    /// The whole term, operands included.
    void pretty_print(Printer& printer) const override = 0;
    /// The bare operator symbol; where it stands between two operands, with the blanks around it.
    virtual void pretty_print_operator(Printer& printer) const = 0;
    /// The construct and its parameters in words.
    virtual void pretty_print_operator_description(Printer& printer) const = 0;
    /// (precedence, associativity): a lower precedence binds tighter.
    virtual std::pair<unsigned, unsigned> pretty_print_information() const = 0;
    /// Whether `other` counts as the same operator where the need of parentheses is decided.
    virtual bool pretty_print_is_same_operator(Process const& other) const = 0;

    // What a compiler asks to see how the arguments run; see argument_model.h. Of an index, the
    // host only asks below `argument_count`.

    /// What running does to the other arguments.
    virtual RecursionType recursion_type() const = 0;
    /// Whether a recursive reference may stand inside argument `index`.
    virtual bool allows_recursion(unsigned index) const = 0;
    /// Whether argument `index` runs when the term starts.
    virtual ArgumentState process_state(unsigned index) const = 0;
    /// Whether argument `index` is thrown away as soon as another performs a visible event. Asked
    /// only where some argument runs from the start: the two prefixes and internal choice abort.
    virtual bool discarded_by(unsigned index) const = 0;
    /// Asked only of an argument that starts off; aborts where none does.
    virtual TurnedOnBy turned_on_by(unsigned index) const = 0;
    /// What the term prefers, given whether the host wishes for the high level.
    virtual CompilationLevel preferred_compilation_level(bool high_wished) const = 0;
    /// Whether arguments may be reordered without changing the term's meaning. The event-set prefix
    /// aborts, CHAOS panics.
    virtual bool is_commutative() const = 0;

    /// Does not change, and needs no argument to be set.
    virtual unsigned argument_count() const = 0;
    /// Null before `set_arguments` in a term built without arguments. The index is not checked.
    /// RUN, CHAOS and the reference to a named process, which have no arguments, abort.
    virtual ProcessPointer const& argument(unsigned index) const = 0;
    /// Replaces the arguments by the first `argument_count` elements, of which there must be as
    /// many, retaining each new one before the one it replaces is released. Only for a term that
    /// nobody else uses yet and that was not asked for its hash code.
    virtual void set_arguments(ProcessArray const& arguments) = 0;

    /// The code if it was asked for and the class keeps it in `m_hash`; 0 otherwise. Far cheaper than
    /// to ask again.
    std::uint64_t kept_hash() const noexcept { return m_hash.kept(); }

  protected:
    Process() = default;

    /// This very term as a successor.
    ProcessPointer self() const;

    /// Filled when the code is first asked for, with just what `hash_code` answers: see kept_hash.
    CachedHash m_hash;
};

/// A term that a host can compile. All constructs are, although RUN and CHAOS have no formats and
/// are only ever explored; only a reference to a named process is not.
class CALDER_PROCESS_COMPILER_EXPORT CompilableProcess : public Process {
  public:
    CompilableProcess() = default;
    ~CompilableProcess() override;
};

/// What a term contributes to the hash code of a term around it: 0 when there is none.
inline std::uint64_t hash_of(ProcessPointer const& process) {
    if (!process) {
        return 0;
    }
    std::uint64_t const kept = process->kept_hash();
    return kept != 0 ? kept : process->hash_code();
}

} // namespace Calder::ProcessCompiler
