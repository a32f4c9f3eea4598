#include "script/questions.h"

#include "script/diagnostics.h"
#include "script/suggestion.h"

#include <algorithm>
#include <array>

namespace Calder::Script {

namespace {

/// The one list of them.
constexpr std::array entries{
    QuestionEntry{Question::deadlock_free, "deadlock free", QuestionArgument::nothing},
    QuestionEntry{Question::divergence_free, "divergence free", QuestionArgument::nothing},
    QuestionEntry{Question::deterministic, "deterministic", QuestionArgument::nothing},
    QuestionEntry{Question::has_trace, "has trace", QuestionArgument::trace},
    QuestionEntry{Question::never, "never", QuestionArgument::events},
};

} // namespace

QuestionEntry const* find_question(std::string_view words) {
    auto const found =
        std::find_if(entries.begin(), entries.end(),
                     [&](QuestionEntry const& entry) { return entry.words == words; });
    return found == entries.end() ? nullptr : &*found;
}

Wording unknown_question(std::string_view words) {
    std::string const message =
        words.empty() ? "nothing is asked" : "there is no question " + in_quotes(words);
    // Livelock is nearer to deadlock by its letters alone.
    if (words.starts_with("livelock")) {
        return message + ": write ':[divergence free]'";
    }
    unsigned budget = suggestion_budget;
    Suggestion suggestion(words, budget);
    for (QuestionEntry const& entry : entries) {
        suggestion.consider(entry.words);
    }
    if (Wording const meant = suggestion.wording(); !meant.suggestion.empty()) {
        return message + meant;
    }
    std::string all;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        all += index == 0 ? ": there are " : index + 1 < entries.size() ? ", " : " and ";
        all += in_quotes(entries[index].words);
    }
    return message + all;
}

std::string example_of(QuestionEntry const& entry) {
    std::string question = std::string(":[") + entry.words + "]";
    switch (entry.argument) {
    case QuestionArgument::nothing: return question;
    case QuestionArgument::trace: return question + ": <a, b>";
    case QuestionArgument::events: return question + ": {a, b}";
    }
    return question;
}

std::string missing_argument(QuestionEntry const& entry) {
    bool const is_trace = entry.argument == QuestionArgument::trace;
    return std::string("this question goes on with ") + (is_trace ? "a trace" : "a set of events") +
           ", as in " + in_quotes(example_of(entry));
}

} // namespace Calder::Script
