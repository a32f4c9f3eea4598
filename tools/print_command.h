#pragma once

#include "tools/input.h"

#include <cstdint>
#include <optional>

namespace Calder::Tools {

struct PrintOptions {
    Input input;
    bool abbreviate = false;
    std::optional<std::int32_t> budget;
    std::optional<unsigned> width;
};

/// `calder print`: the term that a definition says, as text.
int print_term(PrintOptions const& options);

/// `calder describe`: the outermost construct of that term, in words.
int describe_term(Input const& input);

} // namespace Calder::Tools
