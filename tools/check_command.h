#pragma once

#include "tools/input.h"
#include "tools/search_options.h"

#include <optional>
#include <string>

namespace Calder::Tools {

struct CheckOptions {
    Input input;
    SearchOptions search;
    /// Which assertions are answered, counted from 1, such as "2,5"; by default all.
    std::optional<std::string> only;
    bool json = false;
};

/// `calder check`: answers what the script asks, one question after the other, with the evidence.
int check_script(CheckOptions const& options);

} // namespace Calder::Tools
