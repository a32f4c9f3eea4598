#include "core/growing_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace Calder {
namespace {

using Array = GrowingArray<std::uint64_t>;
using Elements = std::vector<std::uint64_t>;

constexpr std::size_t mapped = large_page / sizeof(std::uint64_t);

Array counting(std::size_t size) {
    Array array;
    for (std::size_t i = 0; i < size; ++i) {
        array.push_back(i);
    }
    return array;
}

bool has(Array const& array, Elements const& wanted) {
    return std::equal(array.begin(), array.end(), wanted.begin(), wanted.end());
}

TEST(GrowingArray, is_a_vector_whatever_its_size) {
    std::minstd_rand random(7); // NOLINT(cert-msc51-cpp): the same sizes every time
    for (unsigned run = 0; run < 20; ++run) {
        Array array;
        Elements wanted;
        Array between; // what stands in the way of growing in place
        for (unsigned step = 0; step < 12; ++step) {
            std::size_t const count = random() % (std::size_t{1} << random() % 19);
            std::uint64_t* const place = array.append(count);
            for (std::size_t i = 0; i < count; ++i) {
                place[i] = random();
            }
            wanted.insert(wanted.end(), place, place + count);
            for (std::uint64_t i = 0; i < count / 4; ++i) {
                array.push_back(i);
                wanted.push_back(i);
            }
            ASSERT_TRUE(has(array, wanted)) << run << ' ' << step << ' ' << wanted.size();
            if (step % 4 == 1) {
                wanted.resize(random() % (wanted.size() + 1));
                array.shrink(wanted.size());
            }
            if (step % 4 == 2) {
                between = array;
                ASSERT_TRUE(has(between, wanted)) << run << ' ' << step;
            }
        }
        Array const moved = std::move(array);
        EXPECT_TRUE(has(moved, wanted)) << run;
    }
}

TEST(GrowingArray, stays_as_it_was_where_there_is_no_room) {
    // More than an address space has, more than a size can tell.
    for (std::size_t const count : {std::size_t{1} << 46, ~std::size_t{0} / 4, ~std::size_t{0}}) {
        for (std::size_t const size :
             {std::size_t{0}, std::size_t{1}, mapped - 1, mapped, 3 * mapped}) {
            Array array = counting(size);
            EXPECT_THROW(array.append(count), std::bad_alloc) << count << ' ' << size;
            ASSERT_EQ(array.size(), size);
            array.push_back(size);
            for (std::size_t i = 0; i <= size; ++i) {
                ASSERT_EQ(array[i], i) << count << ' ' << size;
            }
        }
    }
}

TEST(GrowingArray, tells_before_what_it_will_occupy) {
    struct {
        std::size_t size;
        std::size_t additions;
    } const rows[] = {{0, 0},          {0, 1},      {1, 1},         {8, 1},          {100, 1000},
                      {mapped - 1, 1}, {mapped, 1}, {1000, mapped}, {mapped, mapped}};
    for (auto const& row : rows) {
        Array array = counting(row.size);
        std::uint64_t const before = array.memory_bytes();
        std::uint64_t const announced = array.growth_bytes(row.additions);
        EXPECT_GE(before, row.size * sizeof(std::uint64_t));
        std::uint64_t const* const old = array.data();
        array.append(row.additions);
        EXPECT_LE(array.memory_bytes(), before + announced) << row.size << ' ' << row.additions;
        if (array.data() == old) {
            EXPECT_LE(announced, row.additions * sizeof(std::uint64_t))
                << row.size << ' ' << row.additions;
        }
    }
    EXPECT_LE(counting(1).memory_bytes(), 64U) << "a cache line, as most of them stay small";
}

} // namespace
} // namespace Calder
