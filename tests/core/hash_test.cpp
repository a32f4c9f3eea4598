#include "core/cached_hash.h"
#include "core/hash_combine.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace Calder {
namespace {

TEST(Hash, combining_gives_the_known_codes) {
    struct {
        std::uint64_t h, k, combined;
    } const rows[] = {
        {0xc41, 0, 0x9a52b77682efdea8},
        {0x1a4d, 0, 0x923b6fb0d4800626},
        {0x551, 0, 0xa153964573ab1b88},
        {0x551, 4, 0x41bb87b258c2de50},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(hash_combine(row.h, row.k), row.combined) << std::hex << row.h << ' ' << row.k;
    }
}

RC_GTEST_PROP(HashProperty, codes_are_even, (std::uint64_t h, std::uint64_t k)) {
    RC_ASSERT(hash_combine(h, k) % 2 == 0);
}

TEST(Hash, a_code_is_computed_once_unless_it_is_zero) {
    struct {
        std::uint64_t code;
        int computations;
    } const rows[] = {{42, 1}, {0, 3}};
    for (auto const& row : rows) {
        CachedHash const cache;
        int computations = 0;
        for (int call = 0; call < 3; ++call) {
            EXPECT_EQ(cache.get([&] {
                ++computations;
                return row.code;
            }),
                      row.code);
        }
        EXPECT_EQ(computations, row.computations);
    }
}

} // namespace
} // namespace Calder
