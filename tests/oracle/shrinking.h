#pragma once

#include "tests/oracle/plain_term.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace Calder::Oracle {

/// The seeds that a random test tries. CALDER_MODELS says how many they are, so that a run can be
/// widened, and CALDER_SEED which is the first: the model that failed is the first one of its seed.
struct SeedRange {
    std::uint64_t first;
    std::uint64_t end;

    std::string text() const {
        return "seeds " + std::to_string(first) + " to " + std::to_string(end - 1);
    }
};

inline SeedRange seeds_from_environment(std::uint64_t models) {
    auto const number = [](char const* name, std::uint64_t otherwise) {
        char const* const text = std::getenv(name);
        return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
    };
    std::uint64_t const first = number("CALDER_SEED", 1);
    return {first, first + number("CALDER_MODELS", models)};
}

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

/// Fails with the smallest model that differs, of the first seed whose model does. CALDER_SEED
/// replays it, CALDER_MODELS says how many are tried.
template <typename ModelOf, typename DifferenceIn>
void expect_no_difference(std::uint64_t models, ModelOf const& model_of,
                          DifferenceIn const& difference_in) {
    SeedRange const seeds = seeds_from_environment(models);
    std::cout << seeds.text() << '\n';
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        if (Model const model = model_of(seed); difference_in(model)) {
            Model const least = shrunk(model, [&](Model const& candidate) {
                return difference_in(candidate).has_value();
            });
            FAIL() << "CALDER_SEED=" << seed << ", shrunk to\n    " << text_of(least) << '\n'
                   << *difference_in(least);
        }
    }
}

} // namespace Calder::Oracle
