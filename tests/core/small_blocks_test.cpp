#include "core/small_blocks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace Calder {
namespace {

struct Taken {
    unsigned char* block;
    std::size_t bytes;
    unsigned char mark;
};

Taken taken(std::size_t bytes, unsigned char mark) {
    auto* const block = static_cast<unsigned char*>(SmallBlocks::allocate(bytes));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0U);
    std::memset(block, mark, bytes);
    return {block, bytes, mark};
}

/// Nobody else wrote to it.
void give_back(Taken const& taken) {
    for (std::size_t index = 0; index < taken.bytes; ++index) {
        ASSERT_EQ(taken.block[index], taken.mark);
    }
    SmallBlocks::free(taken.block, taken.bytes);
}

TEST(SmallBlocks, those_in_use_never_overlap) {
    std::mt19937 random(1);
    std::vector<Taken> all;
    for (unsigned step = 0; step < 50'000; ++step) {
        if (random() % 5 < 3 || all.empty()) {
            all.push_back(taken(1 + random() % (SmallBlocks::most_small_bytes + 40),
                                static_cast<unsigned char>(random())));
        } else {
            std::swap(all[random() % all.size()], all.back());
            give_back(all.back());
            all.pop_back();
        }
    }
    for (Taken const& each : all) {
        give_back(each);
    }
}

TEST(SmallBlocks, may_be_freed_by_another_thread_and_outlive_their_own) {
    std::vector<Taken> all;
    for (unsigned round = 0; round < 5; ++round) {
        std::thread([&] {
            for (Taken const& each : all) {
                give_back(each);
            }
            all.clear();
            // Every other thread only frees, and leaves what it freed to the next one.
            for (unsigned step = round % 2 * 5'000; step < 5'000; ++step) {
                all.push_back(taken(1 + step % SmallBlocks::most_small_bytes,
                                    static_cast<unsigned char>(round * 7 + step)));
            }
        }).join();
    }
    for (Taken const& each : all) {
        give_back(each);
    }
}

TEST(SmallBlocks, threads_one_after_another_share_their_pieces) {
    if (SmallBlocks::are_of_their_own()) {
        GTEST_SKIP() << "there are no pieces";
    }
    constexpr std::uintptr_t least_piece = 32 << 10;
    std::vector<Taken> all;
    std::set<std::uintptr_t> pieces;
    for (unsigned round = 0; round < 400; ++round) {
        std::thread([&] { all.push_back(taken(48, static_cast<unsigned char>(round))); }).join();
        pieces.insert(reinterpret_cast<std::uintptr_t>(all.back().block) / least_piece);
    }
    EXPECT_LT(pieces.size(), 50U);
    for (Taken const& each : all) {
        give_back(each);
    }
}

TEST(SmallBlocks, null_is_let_be) {
    SmallBlocks::free(nullptr, 0);
    SmallBlocks::free(nullptr, 1'000);
}

} // namespace
} // namespace Calder
