#pragma once

#include "process_compiler/session.h"
#include "script/translation.h"
#include "script/value_errors.h"
#include "values/evaluation.h"

namespace Calder::Script {

/// Declares what the datatypes and the channels of a script say, its events in the session in the
/// order of the script; then looks at every event that is written out. Reports what is wrong.
void declare(TokenList const& tokens, SyntaxTree const& tree, NameTable& names,
             Translation& translation, Values::ChannelTable& channels, Values::Evaluator& evaluator,
             ProcessCompiler::Session& session, Diagnostics& diagnostics);

} // namespace Calder::Script
