#pragma once

#include "script/assertion.h"
#include "script/wording.h"

#include <string>
#include <string_view>

namespace Calder::Script {

/// What stands behind `:[words]:`.
enum class QuestionArgument : unsigned char { nothing, trace, events };

/// A question about one process.
struct QuestionEntry {
    Question question;
    char const* words;
    QuestionArgument argument;
};

/// Null when the words, with one blank between them, ask nothing.
QuestionEntry const* find_question(std::string_view words);

/// What to say of words that ask nothing, or of none: what they may have been meant for, or else what
/// there is.
Wording unknown_question(std::string_view words);

/// How such a question is written with its argument: `:[never]: {a}`.
std::string example_of(QuestionEntry const& entry);

/// What to say where the argument of a question, which has one, is missing.
std::string missing_argument(QuestionEntry const& entry);

} // namespace Calder::Script
