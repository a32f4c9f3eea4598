#pragma once

#include "refinement/questions.h"
#include "script/script.h"

namespace Calder::Tools {

/// An assertion of a script and what came of it.
struct Answered {
    Script::Script const& script;
    Script::Assertion const& assertion;
    Refinement::Answer const& answer;
    double seconds;

    /// Of the whole assertion, its `not` included.
    Refinement::Verdict verdict() const {
        using Refinement::Verdict;
        if (!assertion.is_negated || answer.verdict == Verdict::undecided) {
            return answer.verdict;
        }
        return answer.verdict == Verdict::holds ? Verdict::fails : Verdict::holds;
    }
};

} // namespace Calder::Tools
