#include "tests/refinement/random_systems.h"
#include "tests/support/seeds.h"

#include <gtest/gtest.h>

namespace Calder::Refinement::Testing {
namespace {

using ProcessCompiler::tau;
using StateSpace::Testing::NamedProcessSource;

constexpr Model all_models[] = {Model::traces, Model::failures, Model::failures_divergences};

NamedProcessSource const source;

bool holds(Rows const& abstract, Rows const& concrete, Model model) {
    Answer const answer = refinement(term_of(abstract, "A"), term_of(concrete, "C"), model, source);
    EXPECT_NE(answer.verdict, Verdict::undecided);
    return answer.verdict == Verdict::holds;
}

bool is_free_of_divergence(Rows const& rows) {
    return divergence_free(term_of(rows, "P"), source).verdict == Verdict::holds;
}

bool is_deterministic(Rows const& rows) {
    return deterministic(term_of(rows, "P"), source).verdict == Verdict::holds;
}

Rows stop() {
    return {{}};
}

/// Each state and, at the end, one that all of them lead to silently; and it to itself.
Rows diverging() {
    return {{{tau, 0}}};
}

TEST(Laws, OfTheThreeModelsTogether) {
    Calder::Testing::SeedRange const seeds =
        Calder::Testing::one_of(5, Calder::Testing::seeds_from_environment(4000));
    unsigned transitive = 0;
    for (std::uint64_t seed = seeds.first; seed < seeds.end; ++seed) {
        Random random(seed);
        Rows const p = random_rows(random, 4);
        Rows const q = relative_of(p, random);
        Rows const r = relative_of(q, random);
        for (Model const model : all_models) {
            EXPECT_TRUE(holds(p, p, model));
            EXPECT_TRUE(holds(internal_choice(p, q), p, model));
            EXPECT_TRUE(holds(p, internal_choice(p, p), model));
            EXPECT_TRUE(holds(internal_choice(p, internal_choice(q, r)),
                              internal_choice(internal_choice(p, q), r), model));
            EXPECT_EQ(holds(p, internal_choice(q, r), model),
                      holds(p, q, model) && holds(p, r, model));
            if (holds(p, q, model) && holds(q, r, model)) {
                EXPECT_TRUE(holds(p, r, model));
                ++transitive;
            }
            if (holds(p, q, model)) {
                EXPECT_TRUE(holds(hidden(p, a), hidden(q, a), model));
            }
        }
        EXPECT_TRUE(holds(p, stop(), Model::traces));
        EXPECT_TRUE(holds(p, diverging(), Model::failures)); // it has no stable failure
        EXPECT_TRUE(holds(diverging(), p, Model::failures_divergences));
        bool const in_failures = holds(p, q, Model::failures);
        EXPECT_TRUE(!in_failures || holds(p, q, Model::traces));
        if (is_free_of_divergence(p)) {
            EXPECT_EQ(holds(p, q, Model::failures_divergences),
                      in_failures && is_free_of_divergence(q));
        }
        if (is_deterministic(p) && holds(p, q, Model::failures_divergences)) {
            EXPECT_TRUE(holds(q, p, Model::failures_divergences)); // nothing is below it
            EXPECT_TRUE(is_deterministic(q));
        }
        ASSERT_FALSE(HasFailure()) << "CALDER_SEED=" << seed << ": " << text_of(p) << " | "
                                   << text_of(q) << " | " << text_of(r);
    }
    EXPECT_GT(transitive, (seeds.end - seeds.first) / 8);
}

} // namespace
} // namespace Calder::Refinement::Testing
