#pragma once

#include "process_compiler/process.h"

#include <string>

namespace Calder::ProcessCompiler {

/// Makes what named processes stand for when they are first asked for: a script with parameters has
/// one named process for each tuple of values, millions of them or without end.
class CALDER_PROCESS_COMPILER_EXPORT ProcessMaker {
  public:
    ProcessMaker();
    virtual ~ProcessMaker();
    ProcessMaker(ProcessMaker const&) = delete;
    ProcessMaker& operator=(ProcessMaker const&) = delete;

    /// What the reference of that number stands for; null when there is no such process. The same
    /// term every time, up to equality. May add references and define others, but must not ask the
    /// source for a process that is still to be made.
    ///
    /// What it throws passes through whatever asked for the process, and the next who asks begins
    /// anew. Where it makes or compares terms, what a watch of recursion throws passes through it
    /// in turn, and not all of that is a std::exception.
    virtual ProcessPointer make(unsigned number) = 0;

    /// The name of a reference that was added without one. Only for people: terms are told apart by
    /// their numbers.
    virtual std::string name(unsigned number) const = 0;
};

} // namespace Calder::ProcessCompiler
