#pragma once

#include "process_compiler/named_process_source.h"
#include "tests/oracle/plain_term.h"

namespace Calder::Oracle {

/// The library's own term for a plain one; names become references of `source`.
ProcessCompiler::ProcessPointer library_term(Term const& term,
                                             ProcessCompiler::NamedProcessSource& source);

/// The same for a whole model, whose names are defined in `source`.
ProcessCompiler::ProcessPointer library_model(Model const& model,
                                              ProcessCompiler::NamedProcessSource& source);

} // namespace Calder::Oracle
