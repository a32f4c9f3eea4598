#pragma once

#include "script/translation.h"
#include "values/evaluation.h"

#include <string>
#include <vector>

namespace Calder::Script {

/// What is needed to tell people of what went wrong with values.
struct Telling {
    TokenList const& tokens;
    SyntaxTree const& tree;
    Values::Program const& program;
    Values::ChannelTable const& channels;
};

/// At the place of the error, with the calls that led there as notes.
Diagnostic diagnostic_of(Telling const& telling, Values::EvaluationError const& error);

/// `BUFFER(<0, 1>)`, cut where it is long.
std::string text_of_call(Telling const& telling, unsigned definition,
                         std::span<Values::Value const> arguments);

/// `in BUFFER(<0, 1>), called at 7:14`; with the name of the source where that is not `source`, in
/// which the error stands.
Note note_of_call(Telling const& telling, unsigned definition,
                  std::span<Values::Value const> arguments, Values::Place place, unsigned source);

/// Of very many notes the first and the last ones, and how many there are between them.
void fold(std::vector<Note>& notes);

} // namespace Calder::Script
