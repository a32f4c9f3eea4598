#pragma once

#include "values/expression.h"

#include <string_view>
#include <vector>

namespace Calder::Script {

/// A name that is there unless the script binds it otherwise.
struct Builtin {
    enum class Kind : unsigned char { function, truth, truth_values, events };

    std::string_view name;
    Kind kind;
    /// Of a function.
    Values::Operation operation{};
    unsigned parameter_count = 0;
    /// Of a truth value.
    bool truth = false;
};

/// Null when nothing of this name is built in.
Builtin const* find_builtin(std::string_view name);
/// All of them, for suggestions.
std::vector<std::string_view> builtin_names();

} // namespace Calder::Script
