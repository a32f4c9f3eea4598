#pragma once

#include "tests/oracle/plain_term.h"
#include "tests/support/seeds.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>

namespace Calder::Oracle {

using Testing::SeedRange;
using Testing::seeds_from_environment;

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
/// replays it, CALDER_MODELS says how many are tried, of which a slow comparison takes a share.
template <typename ModelOf, typename DifferenceIn>
void expect_no_difference(std::uint64_t models, ModelOf const& model_of,
                          DifferenceIn const& difference_in, unsigned share = 1) {
    SeedRange const seeds = Testing::one_of(share, seeds_from_environment(models));
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
