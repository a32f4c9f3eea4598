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
        {0xc41, 0, 0x9a52b77682efdea8},  {0x1a4d, 0, 0x923b6fb0d4800626},
        {0x183b, 0, 0x4a896d9d8516b63e}, {0x101f, 0, 0xa38e0dc7fface1ba},
        {0xf0d, 0, 0x808fbbe22b0b7092},  {0x7ed, 0, 0x9cca30ae48460fb0},
        {0x551, 0, 0xa153964573ab1b88},  {0x551, 4, 0x41bb87b258c2de50},
        {0x62b, 0, 0x20fbeb41c16ab054},  {0x189b, 0, 0x8e1e9933707c8024},
        {0x3d7, 0, 0x883c343423895bba},  {0x132d, 0, 0xf8c565d0b27f205e},
        {0x152b, 0, 0x9aedb00c753c143c},
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
