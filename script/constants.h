#pragma once

#include "script/translation.h"
#include "values/evaluation.h"

#include <vector>

namespace Calder::Script {

/// Puts what is known already in the place of what would be computed each time it is asked for:
/// the values of definitions without parameters, and what is made of constants alone. `values` has
/// those of the definitions, by number; nothing where there is none. What would be an error stays,
/// as it may never be asked for.
void fold_constants(Translation& translation, std::vector<Values::Value> const& values,
                    Values::Evaluator& evaluator);

} // namespace Calder::Script
