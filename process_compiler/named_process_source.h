#pragma once

#include "process_compiler/named_process.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace Calder::ProcessCompiler {

class ProcessMaker;

/// What the named processes of a script stand for. Terms refer to them by the references made here
/// and only make sense together with the source that made them: it must outlive whatever is asked
/// of them, though not the terms themselves.
///
/// There are names, which hold a text and are mostly defined before they are asked for, and
/// *instances*, which only have a number: a maker knows their names and makes their terms. A
/// reference takes 80 bytes (64 of them are the term of the reference), a name its text besides,
/// and an instance that was made the term that it stands for.
///
/// Reading is safe from several threads at once while nobody refers, defines, or asks for a process
/// that is still to be made. The searches of `state_space/` ask in the thread that called them:
/// those with threads of their own run on machines, whose leaves were explored before.
class CALDER_PROCESS_COMPILER_EXPORT NamedProcessSource {
  public:
    NamedProcessSource();
    ~NamedProcessSource();
    NamedProcessSource(NamedProcessSource const&) = delete;
    NamedProcessSource& operator=(NamedProcessSource const&) = delete;

    /// The term for the process of this name, defined already or not: the same one every time. As
    /// all that is handed out here by reference, it stays where it is while more come up.
    NamedProcessPointer const& reference(std::string const& name);

    /// A new instance. One allocation, but where an array grows; where memory runs out, the source
    /// is as before.
    NamedProcessPointer const& add_reference();

    /// @{
    /// Says what a name or an instance stands for, in the place of anything it stood for before.
    void define(std::string const& name, ProcessPointer process);
    void define(NamedProcess const& reference, ProcessPointer process);
    /// @}

    /// Who makes what was not defined; not owned. Null, as at first, when nobody does.
    void set_maker(ProcessMaker* maker) { m_maker = maker; }

    /// Promises that nothing that the process can become prefers to be a construct of a machine. A
    /// machine then takes it as it stands, and does not look at what it may become before it is
    /// explored. A promise that does not hold costs states, not correctness.
    void declare_sequential(NamedProcess const& reference);
    /// False where nobody promised.
    bool is_sequential(NamedProcess const& reference) const;

    /// Whether it has a term: it was defined, or asked for and made.
    bool is_defined(NamedProcess const& reference) const;

    /// Whether it was added without a name. Logarithmic in the number of names.
    bool is_instance(NamedProcess const& reference) const;

    /// What a reference stands for; made now if it was not defined, and kept. A process that is
    /// neither defined nor made panics with "The process NAME is not defined".
    ProcessPointer const& process(NamedProcess const& reference) const;

    /// Logarithmic in the number of names. Of an instance without a maker, "#" and its number.
    std::string name(NamedProcess const& reference) const;

    /// All references, in the order in which they first came up.
    std::deque<NamedProcessPointer> const& references() const { return m_references; }

  private:
    struct Name {
        unsigned number;
        std::string const* text; // the key of `m_numbers`
    };

    std::string const* stored_name(unsigned number) const;
    void make(NamedProcess const& reference, ProcessPointer& process) const;

    // Deques, as what they hold must not move.
    std::deque<NamedProcessPointer> m_references;   // by number
    mutable std::deque<ProcessPointer> m_processes; // by number; null when not defined nor made
    std::unordered_map<std::string, unsigned> m_numbers;
    std::vector<Name> m_names;       // ascending numbers
    std::vector<bool> m_sequentials; // by number, up to the last one declared so
    ProcessMaker* m_maker = nullptr;
};

} // namespace Calder::ProcessCompiler
