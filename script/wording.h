#pragma once

#include <string>
#include <utility>

namespace Calder::Script {

/// What is said of an error and, where it ends in "did you mean 'NAME'?", that name. Made of a text
/// wherever nothing is meant in the place of what is wrong.
struct Wording {
    /// The whole of it, with the question.
    std::string text;
    /// What was meant, to be written in the place of what is wrong; empty for nothing.
    std::string suggestion{};

    /// @{
    /// Nothing is meant. Implicit, because most errors have a text alone.
    Wording(std::string words) : text(std::move(words)) {}
    Wording(char const* words) : text(words) {}
    /// @}
    /// The words end in the question for what was meant.
    Wording(std::string words, std::string meant)
        : text(std::move(words)), suggestion(std::move(meant)) {}
};

/// The text goes on with what stands behind.
inline Wording operator+(std::string text, Wording behind) {
    return {std::move(text) + behind.text, std::move(behind.suggestion)};
}

} // namespace Calder::Script
