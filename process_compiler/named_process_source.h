#pragma once

#include "process_compiler/named_process.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Calder::ProcessCompiler {

/// What the names of a script stand for. Terms refer to names by the references made here and only
/// make sense together with the source that made them.
///
/// Reading is safe from several threads at once while nobody refers or defines.
class CALDER_PROCESS_COMPILER_EXPORT NamedProcessSource {
  public:
    NamedProcessSource();
    ~NamedProcessSource();
    NamedProcessSource(NamedProcessSource const&) = delete;
    NamedProcessSource& operator=(NamedProcessSource const&) = delete;

    /// The term for the process of this name, defined already or not: the same one every time.
    NamedProcessPointer const& reference(std::string const& name);

    /// Says what a name stands for, in the place of anything it stood for before.
    void define(std::string const& name, ProcessPointer process);

    bool is_defined(NamedProcess const& reference) const;

    /// What a reference stands for. A name that was never defined panics with "The process NAME is
    /// not defined".
    ProcessPointer const& process(NamedProcess const& reference) const;

    /// All references, in the order in which their names first came up.
    std::vector<NamedProcessPointer> const& references() const { return m_references; }

  private:
    std::vector<NamedProcessPointer> m_references; // by number
    std::vector<ProcessPointer> m_processes;       // by number; null when not defined
    std::unordered_map<std::string, unsigned> m_numbers;
};

} // namespace Calder::ProcessCompiler
