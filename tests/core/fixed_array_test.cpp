#include "core/fixed_array.h"
#include "core/reference_counted.h"

#include <boost/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Calder {
namespace {

/// Counts the living, and throws when the one is copied whose turn it is.
struct Counted {
    static inline int alive = 0;
    static inline int copies_until_throw = -1;

    Counted() { ++alive; }
    Counted(Counted const&) {
        if (copies_until_throw-- == 0) {
            throw std::runtime_error("no more copies");
        }
        ++alive;
    }
    Counted& operator=(Counted const&) = delete;
    ~Counted() { --alive; }
};

class FixedArrayTest : public testing::Test {
  protected:
    void SetUp() override {
        Counted::alive = 0;
        Counted::copies_until_throw = -1;
    }
};

TEST_F(FixedArrayTest, frees_its_storage_and_never_destroys_its_elements) {
    { FixedArray<Counted> const array(3); }
    EXPECT_EQ(Counted::alive, 3);
}

TEST_F(FixedArrayTest, an_owning_array_destroys_its_elements) {
    { OwningArray<Counted> const array(3); }
    EXPECT_EQ(Counted::alive, 0);
    try {
        OwningArray<Counted> const array(3);
        throw std::runtime_error("on the way out");
    } catch (std::runtime_error const&) {
        EXPECT_EQ(Counted::alive, 0);
    }
}

TEST_F(FixedArrayTest, references_in_place_are_released_wherever_they_stand) {
    struct Held : AtomicReferenceCounted {};
    using Pointer = boost::intrusive_ptr<Held>;
    Pointer const held(new Held);
    Pointer const other(new Held);
    for (std::size_t length : {0U, 1U, 2U, 3U, 40U}) {
        FixedArray<Pointer> given(length);
        std::fill(given.begin(), given.end(), held);
        {
            ReferencesInPlace<Pointer, 2> const array(given);
            ASSERT_EQ(array.size(), length);
            EXPECT_EQ(held->reference_count(), 1 + 2 * length);
            auto const inside = reinterpret_cast<std::uintptr_t>(array.begin()) -
                                reinterpret_cast<std::uintptr_t>(&array);
            EXPECT_EQ(inside < sizeof array, length <= 2) << length;
            for (std::size_t index : {std::size_t{0}, length / 2, length - 1}) {
                if (index >= length) {
                    continue;
                }
                ReferencesInPlace<Pointer, 2> const changed(given, index, other);
                EXPECT_EQ(changed[index], other);
                EXPECT_EQ(std::count(changed.begin(), changed.end(), held), length - 1);
                EXPECT_EQ(held->reference_count(), 3 * length);
                EXPECT_EQ(other->reference_count(), 2U);
            }
        }
        EXPECT_EQ(held->reference_count(), 1 + length);
        std::destroy(given.begin(), given.end());
    }
    EXPECT_EQ(other->reference_count(), 1U);
}

TEST_F(FixedArrayTest, a_copy_that_throws_leaves_nothing_behind) {
    OwningArray<Counted> const original(5);
    for (int copies = 0; copies < 5; ++copies) {
        Counted::copies_until_throw = copies;
        EXPECT_THROW(OwningArray<Counted>{original}, std::runtime_error);
        EXPECT_EQ(Counted::alive, 5) << "after " << copies << " copies";
        Counted::copies_until_throw = copies;
        EXPECT_THROW((OwningArray<Counted>{original, 2, original[0]}), std::runtime_error);
        EXPECT_EQ(Counted::alive, 5) << "after " << copies << " copies, one of them in its place";
    }
}

TEST_F(FixedArrayTest, moving_hands_the_elements_over) {
    OwningArray<Counted> first(4);
    OwningArray<Counted> const second(std::move(first));
    EXPECT_EQ(first.size(), 0U); // NOLINT(bugprone-use-after-move): empty is what it promises
    EXPECT_EQ(second.size(), 4U);
    EXPECT_EQ(Counted::alive, 4);
}

// What an owning array holds is released: neither its elements nor copies of them get, by accident,
// to where they never are.
using Owning = OwningArray<Counted>;
using Plain = FixedArray<Counted>;
static_assert(!std::is_constructible_v<Plain, Owning>);
static_assert(!std::is_constructible_v<Plain, Owning&>);
static_assert(!std::is_constructible_v<Plain, Owning const&>);
static_assert(!std::is_assignable_v<Plain&, Owning>);
static_assert(std::is_constructible_v<Plain const&, Owning const&>, "to be looked at");
static_assert(std::is_nothrow_move_constructible_v<Owning>);
static_assert(std::is_copy_constructible_v<Owning> &&
              std::is_constructible_v<Owning, Plain const&>);

TEST_F(FixedArrayTest, null_is_copied_and_replaces_and_is_replaced) {
    struct Held : AtomicReferenceCounted {};
    using Pointer = boost::intrusive_ptr<Held>;
    Pointer const held(new Held);
    OwningArray<Pointer> const given{held, nullptr, held};
    struct {
        std::size_t index;
        Pointer replacement;
        std::array<Pointer, 3> expected;
    } const rows[] = {
        {0, nullptr, {nullptr, nullptr, held}},
        {1, held, {held, held, held}},
        {1, nullptr, {held, nullptr, held}},
    };
    for (auto const& row : rows) {
        auto const before = held->reference_count();
        {
            OwningArray<Pointer> const copy(given, row.index, row.replacement);
            EXPECT_TRUE(std::equal(copy.begin(), copy.end(), row.expected.begin()));
            EXPECT_EQ(held->reference_count(), before + static_cast<std::uintptr_t>(std::count(
                                                            copy.begin(), copy.end(), held)));
        }
        EXPECT_EQ(held->reference_count(), before);
    }
}

TEST_F(FixedArrayTest, one_element_can_be_replaced_in_a_copy) {
    FixedArray<int> const array{10, 20, 30};
    for (std::size_t index = 0; index < array.size(); ++index) {
        FixedArray<int> const changed(array, index, 7);
        for (std::size_t i = 0; i < array.size(); ++i) {
            EXPECT_EQ(changed[i], i == index ? 7 : array[i]);
        }
    }
}

TEST_F(FixedArrayTest, a_length_beyond_all_memory_is_refused_before_allocating) {
    EXPECT_THROW(FixedArray<void*>(std::size_t{1} << 61), std::bad_alloc);
    EXPECT_THROW(FixedArray<void*>(SIZE_MAX), std::bad_alloc);
}

} // namespace
} // namespace Calder
