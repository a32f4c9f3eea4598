#pragma once

#include "tests/oracle/plain_term.h"

namespace Calder::Oracle {

/// The smallest model that still fails and that greedy steps from `model`, which fails, lead to.
template <typename Fails> Model shrunk(Model model, Fails const& fails) {
    for (bool smaller_found = true; smaller_found;) {
        smaller_found = false;
        for (Model const& candidate : smaller_models(model)) {
            if (text_of(candidate).size() < text_of(model).size() && fails(candidate)) {
                model = candidate;
                smaller_found = true;
                break;
            }
        }
    }
    return model;
}

} // namespace Calder::Oracle
